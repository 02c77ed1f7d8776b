#pragma once

namespace tb::service {

class ApiRouter;
struct ServiceContext;

// The artists offered to a new listener: GET "onboarding-items".
class OnboardingRoutes {
  public:
    static void install(ApiRouter& router, ServiceContext& context);
};

}  // namespace tb::service

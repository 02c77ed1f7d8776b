#pragma once

namespace httplib {
struct Request;
struct Response;
}  // namespace httplib

namespace tb::service {

class FaultInjector;

// Carries out injected faults around the handling of one request, in three places:
//  - before routing: delays, hangs and resets, which need nothing of the request's body;
//  - at the start of a handler: a faked status, once the body was read, so that the
//    connection stays in step;
//  - after the handler: a cut or slowed body.
// The rule found before routing waits for the later steps in a slot of the handling thread.
class FaultActions {
  public:
    // True when the request has been dealt with (a reset or a hang) and must not be routed.
    static bool before(FaultInjector& faults,
                       const httplib::Request& request,
                       httplib::Response& response);
    // True when a faked status was written instead of the real answer.
    static bool answerInstead(httplib::Response& response);
    static void after(FaultInjector& faults,
                      const httplib::Request& request,
                      httplib::Response& response);
};

}  // namespace tb::service

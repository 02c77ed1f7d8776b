#include "api/TBAPIBaseURLProvider.h"

#include "api/TBServiceEnvironment.h"
#include "core/TBPreferencesRepository.h"

namespace tb {

TBAPIBaseURLProvider::TBAPIBaseURLProvider(UserDefaultsProvider& defaults,
                                           NotificationCenter& notifications,
                                           const TBServiceEnvironment& environment)
    : defaults_(defaults), notifications_(notifications), environment_(environment) {}

std::string TBAPIBaseURLProvider::baseURL() const {
    const bool live = TBPreferencesRepository(defaults_, notifications_).liveEnvironment();
    return live ? environment_.liveBaseURL() : environment_.devBaseURL();
}

}  // namespace tb

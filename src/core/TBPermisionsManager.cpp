#include "core/TBPermisionsManager.h"

#include "platform/Clock.h"
#include "platform/SharedInstance.h"
#include "platform/UserDefaults.h"

namespace tb {

namespace {
constexpr const char* kYes = "yes";
constexpr const char* kLater = "later";
}  // namespace

TBPermisionsManager::TBPermisionsManager(UserDefaults& defaults, const Clock& clock)
    : defaults_(defaults), clock_(clock) {}

TBPermisionsManager& TBPermisionsManager::sharedInstance() {
    return SharedInstance<TBPermisionsManager>::get();
}

void TBPermisionsManager::recordAnswer(Answer answer) {
    defaults_.setString(kAnswerKey, answer == Answer::yes ? kYes : kLater);
    defaults_.setDouble(kAnswerDateKey, clock_.now());
    defaults_.synchronize();
}

std::optional<TBPermisionsManager::Answer> TBPermisionsManager::answer() const {
    const auto stored = defaults_.stringForKey(kAnswerKey);
    if (stored == kYes) {
        return Answer::yes;
    }
    if (stored == kLater) {
        return Answer::later;
    }
    return std::nullopt;
}

bool TBPermisionsManager::shouldPrompt() const {
    const auto given = answer();
    if (!given) {
        return true;
    }
    if (*given == Answer::yes) {
        return false;
    }
    return clock_.now() - defaults_.doubleForKey(kAnswerDateKey) >= kRepromptInterval;
}

}  // namespace tb

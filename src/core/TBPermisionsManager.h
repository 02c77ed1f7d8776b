#pragma once

#include <optional>
#include <string>

namespace tb {

class Clock;
class UserDefaults;

// The push and location permission prompt of the splash. The listener's answer and its time
// are kept in the standard user defaults ("permissionsAnswer", "permissionsAnswerDate");
// after "later" the prompt comes back once seven days have passed, after "yes" never.
//
// Linux has no push service, so push is never granted here; the launch reports it as such.
class TBPermisionsManager {
  public:
    enum class Answer { yes, later };

    static constexpr const char* kAnswerKey = "permissionsAnswer";
    static constexpr const char* kAnswerDateKey = "permissionsAnswerDate";
    static constexpr double kRepromptInterval = 604800.0;  // 7 days

    TBPermisionsManager(UserDefaults& defaults, const Clock& clock);

    static TBPermisionsManager& sharedInstance();

    bool pushGranted() const { return pushGranted_; }
    void setPushGranted(bool granted) { pushGranted_ = granted; }

    // Registers for remote notifications. Nothing to register with on Linux.
    void enablePush() {}

    // Stores the answer with the current time and synchronises.
    void recordAnswer(Answer answer);

    // The stored answer, if the listener gave one ("yes" or "later"; anything else is none).
    std::optional<Answer> answer() const;

    // Whether the splash shows the prompt: never answered, or "later" at least seven days ago.
    bool shouldPrompt() const;

  private:
    UserDefaults& defaults_;
    const Clock& clock_;
    bool pushGranted_ = false;
};

}  // namespace tb

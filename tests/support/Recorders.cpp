#include "support/Recorders.h"

#include "platform/MainQueue.h"

namespace tb::test {

std::vector<std::int64_t> RecordingErrorReporter::codesIn(const std::string& domain) const {
    std::vector<std::int64_t> codes;
    for (const auto& record : records) {
        if (record.error.domain == domain) {
            codes.push_back(record.error.code);
        }
    }
    return codes;
}

void SettableReachability::startNotifier(std::function<void()> becameReachable,
                                         std::function<void()> becameUnreachable) {
    started_ = true;
    onReachable_ = std::move(becameReachable);
    onUnreachable_ = std::move(becameUnreachable);
    set(reachable_, wifi_);
}

void SettableReachability::set(bool reachable, bool wifi) {
    reachable_ = reachable;
    wifi_ = wifi;
    if (!started_) {
        return;
    }
    auto callback = reachable ? onReachable_ : onUnreachable_;
    if (callback) {
        queue_.post(callback);
    }
}

bool RecordingUIHost::press(const std::string& title) {
    if (alerts.empty()) {
        return false;
    }
    for (const auto& action : alerts.back().actions) {
        if (action.title == title) {
            if (action.handler) {
                action.handler();
            }
            return true;
        }
    }
    return false;
}

std::uint32_t ScriptedRandomSource::uniform(std::uint32_t upperBound) {
    return static_cast<std::uint32_t>(secureUniform(upperBound));
}

std::uint64_t ScriptedRandomSource::secureUniform(std::uint64_t upperBound) {
    upperBoundsAsked.push_back(upperBound);
    std::uint64_t value = fallback;
    if (!script.empty()) {
        value = script.front();
        script.pop_front();
    }
    return upperBound < 2 ? 0 : value % upperBound;
}

std::vector<std::string> RecordingExternalSdks::libraries() const {
    std::vector<std::string> names;
    for (const auto& start : starts) {
        names.push_back(start.library);
    }
    return names;
}

std::vector<std::string> RecordingExternalSdks::callNames() const {
    std::vector<std::string> names;
    for (const auto& call : calls) {
        names.push_back(call.library);
    }
    return names;
}

}  // namespace tb::test

#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "platform/ErrorReporter.h"
#include "platform/ExternalSdks.h"
#include "platform/RandomSource.h"
#include "platform/Reachability.h"
#include "platform/UIHost.h"

namespace tb {
class MainQueue;
}

namespace tb::test {

// Keeps every error record and reporter start.
class RecordingErrorReporter final : public ErrorReporter {
  public:
    struct Record {
        Error error;
        ErrorInfo additionalInfo;
    };

    void recordError(const Error& error, const ErrorInfo& additionalInfo) override {
        records.push_back({error, additionalInfo});
    }
    void startReporter(const std::string& name, const std::string& key) override {
        started.push_back(name);
        startKeys[name] = key;
    }
    void setReleaseStage(const std::string& stage) override { releaseStage = stage; }
    void endAppStartup() override { ++appStartupEnds; }

    // The codes recorded in the given domain, in order.
    std::vector<std::int64_t> codesIn(const std::string& domain) const;

    std::vector<Record> records;
    std::vector<std::string> started;
    std::map<std::string, std::string> startKeys;
    std::string releaseStage;
    int appStartupEnds = 0;
};

// Reachability the test sets. Changes are reported through the main queue like the real one.
class SettableReachability final : public Reachability {
  public:
    explicit SettableReachability(MainQueue& queue) : queue_(queue) {}

    bool isReachable() const override { return reachable_; }
    bool isReachableViaWiFi() const override { return reachable_ && wifi_; }
    void startNotifier(std::function<void()> becameReachable,
                       std::function<void()> becameUnreachable) override;

    void set(bool reachable, bool wifi = true);
    bool notifierStarted() const { return started_; }

  private:
    MainQueue& queue_;
    bool reachable_ = true;
    bool wifi_ = true;
    bool started_ = false;
    std::function<void()> onReachable_;
    std::function<void()> onUnreachable_;
};

// Keeps what the app showed. Alerts stay so that a test can press their buttons.
class RecordingUIHost final : public UIHost {
  public:
    struct Toast {
        std::string text;
        ToastImage image;
    };

    void showToast(const std::string& text, ToastImage image) override {
        toasts.push_back({text, image});
    }
    void presentAlert(Alert alert) override { alerts.push_back(std::move(alert)); }
    void showProgress(const std::string& text) override { progress.push_back(text); }
    void hideProgress() override { ++progressHidden; }

    void showLoginScreenWithSource(int source) override { loginScreens.push_back(source); }

    // Runs the handler of the button titled `title` on the last alert; false if none.
    bool press(const std::string& title);

    std::vector<Toast> toasts;
    std::vector<Alert> alerts;
    std::vector<std::string> progress;
    int progressHidden = 0;
    std::vector<int> loginScreens;
};

// Answers from a script, then with the fallback value.
class ScriptedRandomSource final : public RandomSource {
  public:
    std::uint32_t uniform(std::uint32_t upperBound) override;
    std::uint64_t secureUniform(std::uint64_t upperBound) override;

    std::deque<std::uint64_t> script;
    std::uint64_t fallback = 0;
    std::vector<std::uint64_t> upperBoundsAsked;
};

class RecordingExternalSdks final : public ExternalSdks {
  public:
    struct Start {
        std::string library;
        std::map<std::string, std::string> settings;
    };
    void start(const std::string& library,
               const std::map<std::string, std::string>& settings) override {
        starts.push_back({library, settings});
    }
    void call(const std::string& function,
              const std::map<std::string, std::string>& arguments) override {
        calls.push_back({function, arguments});
    }
    std::vector<std::string> libraries() const;
    // The names of the calls made, in order.
    std::vector<std::string> callNames() const;

    std::vector<Start> starts;
    std::vector<Start> calls;
};

}  // namespace tb::test

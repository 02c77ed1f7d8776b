#include "SignalWatcher.h"

#include <cstdlib>

#include <pthread.h>

namespace tb {

namespace {
// Wakes the watcher when the program ends without a signal.
constexpr int kStopSignal = SIGUSR1;
}  // namespace

SignalWatcher::SignalWatcher(std::function<void(int signal)> onSignal)
    : onSignal_(std::move(onSignal)) {
    sigemptyset(&signals_);
    sigaddset(&signals_, SIGINT);
    sigaddset(&signals_, SIGTERM);
    sigaddset(&signals_, kStopSignal);
    pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
    thread_ = std::thread([this] { watch(); });
}

SignalWatcher::~SignalWatcher() {
    pthread_kill(thread_.native_handle(), kStopSignal);
    thread_.join();
}

void SignalWatcher::watch() {
    int signal = 0;
    if (sigwait(&signals_, &signal) != 0 || signal == kStopSignal) {
        return;
    }
    onSignal_(signal);
    // A second signal means the clean stop is taking too long for whoever sent it: the
    // process ends as the signal would have ended it. State is written as it changes, so
    // nothing is lost that a kill would not lose.
    if (sigwait(&signals_, &signal) != 0 || signal == kStopSignal) {
        return;
    }
    std::_Exit(128 + signal);
}

}  // namespace tb

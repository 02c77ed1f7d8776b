#include "SignalWatcher.h"

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
    if (sigwait(&signals_, &signal) == 0 && signal != kStopSignal) {
        onSignal_(signal);
    }
}

}  // namespace tb

// tunebrook-service: the reference service on a loopback port. The first line on standard
// output is the API base it serves; progress and notes go to standard error.
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <string>
#include <thread>

#include <CLI/CLI.hpp>
#include <pthread.h>
#include <sys/stat.h>

#include "tunebrook-service/Service.h"
#include "tunebrook-service/core/ProcessRunner.h"

namespace {

// SIGINT and SIGTERM are blocked in every thread and taken by one thread with sigwait, which
// then stops the server from outside any signal handler.
sigset_t stopSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

}  // namespace

int main(int argc, char** argv) {
    tb::service::ServiceOptions options;
    std::string media = "synthesize";
    double tokenLifetime = options.settings.tokenLifetimeSeconds;
    double streamLifetime = options.settings.streamUrlLifetimeSeconds;
    int64_t window = options.settings.timestampWindowSeconds;

    CLI::App app{"Tunebrook reference service"};
    app.add_option("--data", options.dataDir, "Folder of the service's state")->required();
    app.add_option("--port", options.port, "Port on 127.0.0.1; 0 picks a free one")
        ->check(CLI::Range(0, 65535));
    auto* seed = app.add_option("--seed", options.seed, "Seed of the demo catalogue");
    app.add_option("--fault", options.faults,
                   "Injected fault, [METHOD ]PATTERN=ACTION[:ARGS][,times=N][,delay=MS]");
    app.add_option("--media-cache", options.mediaCache,
                   "Folder where made media is kept for other data folders");
    app.add_option("--media", media, "synthesize (ffmpeg) or placeholder")
        ->check(CLI::IsMember({"synthesize", "placeholder"}));
    app.add_option("--token-lifetime", tokenLifetime, "Seconds an access token lasts")
        ->check(CLI::PositiveNumber);
    app.add_option("--stream-url-lifetime", streamLifetime, "Seconds an audio address lasts")
        ->check(CLI::PositiveNumber);
    app.add_option("--timestamp-window", window, "Seconds a signature's timestamp may be off")
        ->check(CLI::Range(int64_t{1}, int64_t{86400}));
    CLI11_PARSE(app, argc, argv);

    options.seedGiven = seed->count() > 0;
    options.media = media == "placeholder" ? tb::service::MediaMode::placeholder
                                           : tb::service::MediaMode::synthesize;
    options.settings.tokenLifetimeSeconds = tokenLifetime;
    options.settings.streamUrlLifetimeSeconds = streamLifetime;
    options.settings.timestampWindowSeconds = window;

    // Everything the service or its ffmpeg children create is its owner's alone.
    umask(077);
    sigset_t signals = stopSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    tb::service::Service service(std::move(options));
    // The waiter is up before the first start's media work, so that a stop during it ends the
    // ffmpeg children and the start instead of waiting for them.
    std::atomic<bool> served{false};
    std::thread waiter([&] {
        int signal = 0;
        sigwait(&signals, &signal);
        tb::service::ProcessRunner::interruptAll();
        // A signal that arrives while the server is still starting must stop it too.
        while (!served) {
            service.stop();
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    });
    // Wakes the waiter when the process ends for another reason than a signal.
    auto endWaiter = [&] {
        served = true;
        pthread_kill(waiter.native_handle(), SIGTERM);
        waiter.join();
    };

    std::string error;
    if (!service.start(error)) {
        std::fprintf(stderr, "tunebrook-service: %s\n", error.c_str());
        endWaiter();
        return 1;
    }
    std::printf("%s\n", service.baseUrl().c_str());
    std::fflush(stdout);
    service.run();
    endWaiter();
    std::fprintf(stderr, "tunebrook-service: stopped\n");
    return 0;
}

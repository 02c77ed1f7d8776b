#include "platform/Log.h"

#include <cstdio>
#include <mutex>
#include <string>

namespace tb {

namespace {

std::mutex& sinkMutex() {
    static std::mutex mutex;
    return mutex;
}

LogSink& installedSink() {
    static LogSink sink;
    return sink;
}

}  // namespace

void logLine(std::string_view text) {
    LogSink sink;
    {
        std::lock_guard lock(sinkMutex());
        sink = installedSink();
    }
    if (sink) {
        sink(text);
        return;
    }
    std::string line(text);
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

LogSink setLogSink(LogSink sink) {
    std::lock_guard lock(sinkMutex());
    LogSink previous = std::move(installedSink());
    installedSink() = std::move(sink);
    return previous;
}

}  // namespace tb

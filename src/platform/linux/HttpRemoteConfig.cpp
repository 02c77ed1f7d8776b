#include "platform/linux/HttpRemoteConfig.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/HttpTransport.h"
#include "platform/JsonLimits.h"
#include "platform/Log.h"
#include "platform/MainQueue.h"
#include "platform/linux/AtomicFile.h"

namespace tb {

namespace {

using nlohmann::json;

Error remoteConfigError(std::int64_t code, const std::string& message) {
    return Error{HttpRemoteConfig::kErrorDomain, code, message, {}};
}

// The set a JSON object holds; nothing when the text is no JSON object.
std::optional<RemoteConfigState::Values> valuesOf(const std::string& text) {
    if (!jsonNestingWithin(text)) {
        return std::nullopt;
    }
    const json document = json::parse(text, nullptr, false);
    if (!document.is_object()) {
        return std::nullopt;
    }
    RemoteConfigState::Values values;
    for (const auto& [key, value] : document.items()) {
        if (auto kept = RemoteConfigValue::fromJson(value.dump())) {
            values.emplace(key, std::move(*kept));
        }
    }
    return values;
}

// The whole of a plain file, opened without following a symlink. Nothing when the file is
// missing, is a symlink or anything but a plain file, or can't be read; `reason` says which.
std::optional<std::string> readPlainFile(const std::string& path, std::string& reason) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        reason = errno == ENOENT ? "" : std::string("can't open: ") + std::strerror(errno);
        return std::nullopt;
    }
    struct stat status {};
    std::string contents;
    bool read = ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
    reason = read ? "" : "not a plain file";
    char buffer[16384];
    while (read) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got == 0) {
            break;
        }
        if (got < 0 && errno != EINTR) {
            reason = std::string("can't read: ") + std::strerror(errno);
            read = false;
        } else if (got > 0) {
            contents.append(buffer, static_cast<std::size_t>(got));
        }
    }
    ::close(fd);
    return read ? std::optional<std::string>(std::move(contents)) : std::nullopt;
}

}  // namespace

HttpRemoteConfig::HttpRemoteConfig(HttpTransport& http,
                                   MainQueue& queue,
                                   ErrorReporter& errors,
                                   std::string url,
                                   const std::string& folder)
    : http_(http),
      queue_(queue),
      errors_(errors),
      url_(std::move(url)),
      path_(folder + "/" + kFileName) {
    readActivated();
}

HttpRemoteConfig::~HttpRemoteConfig() {
    *alive_ = false;
}

void HttpRemoteConfig::readActivated() {
    std::string reason;
    const auto text = readPlainFile(path_, reason);
    if (!text) {
        if (!reason.empty()) {
            logLine("[RemoteConfig] no activated values: " + path_ + " " + reason);
        }
        return;
    }
    if (auto values = valuesOf(*text)) {
        state_.setActivated(std::move(*values));
        return;
    }
    // The next activation writes a whole new file; the broken one is kept for a developer.
    setBrokenFileAside(path_, errors_, kErrorDomain, kFileCorrupt, "not a JSON object");
}

std::optional<Error> HttpRemoteConfig::writeActivated() const {
    json document = json::object();
    for (const auto& [key, value] : state_.activated()) {
        document[key] = json::parse(value.jsonText(), nullptr, false);
    }
    std::string reason;
    if (!writeFileAtomically(path_, document.dump(), 0600, &reason)) {
        return remoteConfigError(kFileUnreadable, "the activated values can't be kept: " + reason);
    }
    return std::nullopt;
}

void HttpRemoteConfig::setDefaults(RemoteConfigDefaults defaults) {
    state_.setDefaults(defaults);
}

void HttpRemoteConfig::fetch(double expirationSeconds, FetchHandler handler) {
    if (expirationSeconds > 0 && lastFetchAt_ &&
        queue_.monotonicNow() - *lastFetchAt_ < expirationSeconds) {
        queue_.post([handler] { handler(RemoteConfigFetchStatus::Success, std::nullopt); });
        return;
    }
    if (url_.empty()) {
        queue_.post([handler] {
            handler(RemoteConfigFetchStatus::Failure,
                    remoteConfigError(0, "no config service is configured"));
        });
        return;
    }
    HttpRequest request;
    request.url = url_;
    request.timeoutSeconds = kFetchTimeoutSeconds;
    setHeader(request.headers, "Accept", "application/json");
    http_.send(std::move(request), [this, alive = alive_, handler](HttpResult result) {
        if (!*alive) {
            return;
        }
        if (auto error = takeAnswer(result)) {
            handler(RemoteConfigFetchStatus::Failure, std::move(error));
            return;
        }
        lastFetchAt_ = queue_.monotonicNow();
        handler(RemoteConfigFetchStatus::Success, std::nullopt);
    });
}

std::optional<Error> HttpRemoteConfig::takeAnswer(const HttpResult& result) {
    if (result.error) {
        return result.error;
    }
    if (result.statusCode() != 200) {
        return remoteConfigError(result.statusCode(), "the config service answered " +
                                                          std::to_string(result.statusCode()));
    }
    auto values = valuesOf(result.response->body);
    if (!values) {
        return remoteConfigError(kFileCorrupt, "the config service's answer is no JSON object");
    }
    state_.setFetched(std::move(*values));
    return std::nullopt;
}

void HttpRemoteConfig::activate(ActivateHandler handler) {
    std::optional<Error> error;
    if (state_.activateFetched()) {
        error = writeActivated();
    }
    queue_.post([handler, error] { handler(error); });
}

RemoteConfigValue HttpRemoteConfig::configValueForKey(const std::string& key) const {
    return state_.valueForKey(key);
}

}  // namespace tb

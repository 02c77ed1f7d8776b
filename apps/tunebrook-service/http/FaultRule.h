#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace tb::service {

// One injected fault. `pattern` is matched against the request path: a pattern without a
// leading "/" is relative to the API base ("music/*/play" means "/v1/music/*/play"); "*"
// stands for any text within one path segment, "**" for any text at all.
struct FaultRule {
    enum class Action { delay, status, hang, truncate, drip, reset };

    int id = 0;
    std::string method;  // "" for every method
    std::string pattern;
    Action action = Action::status;
    int delayMs = 0;       // delay; also a pause before the other actions
    int status = 500;      // status
    std::string body;      // status: the answer's body, JSON; default an error object
    int64_t bytes = -1;    // truncate: bytes sent before the cut, -1 to use percent
    int percent = 50;      // truncate
    int chunkBytes = 256;  // drip
    int intervalMs = 100;  // drip
    int maxMs = 300000;    // hang: the longest wait
    int remaining = -1;    // times left; -1 for ever

    // "[METHOD ]PATTERN=ACTION[:ARG[:ARG]][,times=N][,delay=MS]", e.g.
    // "music/*/play=status:503,times=2", "chart/**=delay:1500", "/media/**=truncate:50%",
    // "search=drip:64:200", "featured=reset", "POST user/downloads=hang".
    static std::optional<FaultRule> parse(const std::string& text, std::string& error);
    // {"path", "action", "method", "status", "body", "delay_ms", "bytes", "percent",
    //  "chunk_bytes", "interval_ms", "max_ms", "times"}
    static std::optional<FaultRule> fromJson(const nlohmann::json& value, std::string& error);
    nlohmann::json toJson() const;

    static const char* actionName(Action action);
};

}  // namespace tb::service

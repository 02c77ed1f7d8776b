#include "tunebrook-service/http/FaultRule.h"

#include <sstream>
#include <vector>

#include <nlohmann/json.hpp>

namespace tb::service {

namespace {

std::optional<FaultRule::Action> actionFrom(const std::string& name) {
    using Action = FaultRule::Action;
    static const std::pair<const char*, Action> names[] = {
        {"delay", Action::delay},       {"status", Action::status}, {"hang", Action::hang},
        {"truncate", Action::truncate}, {"drip", Action::drip},     {"reset", Action::reset}};
    for (const auto& [text, action] : names) {
        if (name == text) {
            return action;
        }
    }
    return std::nullopt;
}

std::optional<int64_t> number(const std::string& text, int64_t low, int64_t high) {
    if (text.empty() || text.size() > 12 ||
        text.find_first_not_of("0123456789") != std::string::npos) {
        return std::nullopt;
    }
    int64_t value = std::stoll(text);
    if (value < low || value > high) {
        return std::nullopt;
    }
    return value;
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::stringstream stream(text);
    std::string part;
    while (std::getline(stream, part, separator)) {
        parts.push_back(part);
    }
    return parts;
}

bool validPattern(const std::string& pattern) {
    return !pattern.empty() && pattern.size() <= 200 &&
           pattern.find_first_of(" \t\r\n?") == std::string::npos;
}

// Reads the action's arguments ("500", "50%", "64:200") into the rule.
bool applyArguments(FaultRule& rule, const std::vector<std::string>& args, std::string& error) {
    using Action = FaultRule::Action;
    auto arg = [&](size_t i) { return i < args.size() ? args[i] : std::string(); };
    switch (rule.action) {
        case Action::delay: {
            auto ms = number(arg(0), 0, 600000);
            if (!ms) {
                error = "delay needs milliseconds";
                return false;
            }
            rule.delayMs = static_cast<int>(*ms);
            return true;
        }
        case Action::status: {
            auto status = args.empty() ? std::optional<int64_t>(500) : number(arg(0), 200, 599);
            if (!status) {
                error = "status needs a code from 200 to 599";
                return false;
            }
            rule.status = static_cast<int>(*status);
            return true;
        }
        case Action::truncate: {
            std::string value = args.empty() ? "50%" : arg(0);
            if (!value.empty() && value.back() == '%') {
                auto percent = number(value.substr(0, value.size() - 1), 0, 99);
                if (!percent) {
                    error = "truncate needs bytes or a percentage below 100";
                    return false;
                }
                rule.percent = static_cast<int>(*percent);
                rule.bytes = -1;
                return true;
            }
            auto bytes = number(value, 0, INT64_C(1) << 40);
            if (!bytes) {
                error = "truncate needs bytes or a percentage below 100";
                return false;
            }
            rule.bytes = *bytes;
            return true;
        }
        case Action::drip: {
            auto chunk = args.empty() ? std::optional<int64_t>(256) : number(arg(0), 1, 1 << 20);
            auto interval =
                args.size() < 2 ? std::optional<int64_t>(100) : number(arg(1), 1, 60000);
            if (!chunk || !interval) {
                error = "drip needs bytes and milliseconds";
                return false;
            }
            rule.chunkBytes = static_cast<int>(*chunk);
            rule.intervalMs = static_cast<int>(*interval);
            return true;
        }
        case Action::hang: {
            if (!args.empty()) {
                auto ms = number(arg(0), 1, 3600000);
                if (!ms) {
                    error = "hang takes the longest wait in milliseconds";
                    return false;
                }
                rule.maxMs = static_cast<int>(*ms);
            }
            return true;
        }
        case Action::reset:
            return true;
    }
    return true;
}

}  // namespace

const char* FaultRule::actionName(Action action) {
    switch (action) {
        case Action::delay:
            return "delay";
        case Action::status:
            return "status";
        case Action::hang:
            return "hang";
        case Action::truncate:
            return "truncate";
        case Action::drip:
            return "drip";
        case Action::reset:
            return "reset";
    }
    return "";
}

std::optional<FaultRule> FaultRule::parse(const std::string& text, std::string& error) {
    size_t equals = text.find('=');
    if (equals == std::string::npos) {
        error = "a fault is PATTERN=ACTION";
        return std::nullopt;
    }
    FaultRule rule;
    std::string left = text.substr(0, equals);
    size_t space = left.find(' ');
    if (space != std::string::npos) {
        rule.method = left.substr(0, space);
        left = left.substr(space + 1);
    }
    rule.pattern = left;
    if (!validPattern(rule.pattern)) {
        error = "invalid path pattern";
        return std::nullopt;
    }
    auto options = split(text.substr(equals + 1), ',');
    if (options.empty()) {
        error = "missing action";
        return std::nullopt;
    }
    auto words = split(options.front(), ':');
    auto action = words.empty() ? std::nullopt : actionFrom(words.front());
    if (!action) {
        error = "unknown action";
        return std::nullopt;
    }
    rule.action = *action;
    if (!applyArguments(rule, std::vector<std::string>(words.begin() + 1, words.end()), error)) {
        return std::nullopt;
    }
    for (size_t i = 1; i < options.size(); ++i) {
        auto pair = split(options[i], '=');
        // A fault that may fire no time at all would only ever sit in the list.
        auto value =
            pair.size() == 2 ? number(pair[1], pair[0] == "times" ? 1 : 0, 1000000) : std::nullopt;
        if (!value || (pair[0] != "times" && pair[0] != "delay")) {
            error = "options are times=N (N at least 1) and delay=MS";
            return std::nullopt;
        }
        if (pair[0] == "times") {
            rule.remaining = static_cast<int>(*value);
        } else {
            rule.delayMs = static_cast<int>(*value);
        }
    }
    return rule;
}

std::optional<FaultRule> FaultRule::fromJson(const nlohmann::json& value, std::string& error) {
    if (!value.is_object() || !value.contains("path") || !value["path"].is_string() ||
        !value.contains("action") || !value["action"].is_string()) {
        error = "a fault needs \"path\" and \"action\"";
        return std::nullopt;
    }
    auto action = actionFrom(value["action"].get<std::string>());
    if (!action) {
        error = "unknown action";
        return std::nullopt;
    }
    FaultRule rule;
    rule.action = *action;
    rule.pattern = value["path"].get<std::string>();
    if (!validPattern(rule.pattern)) {
        error = "invalid path pattern";
        return std::nullopt;
    }
    auto integer = [&](const char* key, int64_t low, int64_t high, auto& field) {
        if (!value.contains(key)) {
            return true;
        }
        if (!value[key].is_number_integer() || value[key].get<int64_t>() < low ||
            value[key].get<int64_t>() > high) {
            error = std::string("invalid \"") + key + "\"";
            return false;
        }
        field = static_cast<std::remove_reference_t<decltype(field)>>(value[key].get<int64_t>());
        return true;
    };
    if (value.contains("method")) {
        if (!value["method"].is_string()) {
            error = "invalid \"method\"";
            return std::nullopt;
        }
        rule.method = value["method"].get<std::string>();
    }
    if (value.contains("body")) {
        if (!value["body"].is_string()) {
            error = "\"body\" is the answer's text";
            return std::nullopt;
        }
        rule.body = value["body"].get<std::string>();
    }
    bool ok = integer("status", 200, 599, rule.status) &&
              integer("delay_ms", 0, 600000, rule.delayMs) &&
              integer("bytes", -1, INT64_C(1) << 40, rule.bytes) &&
              integer("percent", 0, 99, rule.percent) &&
              integer("chunk_bytes", 1, 1 << 20, rule.chunkBytes) &&
              integer("interval_ms", 1, 60000, rule.intervalMs) &&
              integer("max_ms", 1, 3600000, rule.maxMs) &&
              integer("times", -1, 1000000, rule.remaining) && rule.remaining != 0;
    if (!ok) {
        return std::nullopt;
    }
    return rule;
}

nlohmann::json FaultRule::toJson() const {
    return {{"id", id},
            {"method", method},
            {"path", pattern},
            {"action", actionName(action)},
            {"status", status},
            {"delay_ms", delayMs},
            {"bytes", bytes},
            {"percent", percent},
            {"chunk_bytes", chunkBytes},
            {"interval_ms", intervalMs},
            {"max_ms", maxMs},
            {"times", remaining}};
}

}  // namespace tb::service

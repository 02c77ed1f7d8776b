#include "tunebrook-service/http/FaultInjector.h"

#include <nlohmann/json.hpp>

namespace tb::service {

int FaultInjector::add(FaultRule rule) {
    std::lock_guard lock(mutex_);
    rule.id = nextId_++;
    rules_.push_back(std::move(rule));
    return rules_.back().id;
}

bool FaultInjector::remove(int id) {
    std::lock_guard lock(mutex_);
    for (auto it = rules_.begin(); it != rules_.end(); ++it) {
        if (it->id == id) {
            rules_.erase(it);
            return true;
        }
    }
    return false;
}

void FaultInjector::clear() {
    std::lock_guard lock(mutex_);
    rules_.clear();
}

nlohmann::json FaultInjector::list() const {
    std::lock_guard lock(mutex_);
    nlohmann::json out = nlohmann::json::array();
    for (const auto& rule : rules_) {
        out.push_back(rule.toJson());
    }
    return out;
}

std::optional<FaultRule> FaultInjector::take(const std::string& method, const std::string& path) {
    if (path.rfind("/admin/", 0) == 0) {
        return std::nullopt;
    }
    std::lock_guard lock(mutex_);
    for (auto it = rules_.begin(); it != rules_.end(); ++it) {
        if ((!it->method.empty() && it->method != method) ||
            !globMatch(absolutePattern(it->pattern), path)) {
            continue;
        }
        FaultRule rule = *it;
        if (it->remaining > 0 && --it->remaining == 0) {
            rules_.erase(it);
        } else if (it->remaining == 0) {
            continue;
        }
        return rule;
    }
    return std::nullopt;
}

bool FaultInjector::sleepFor(std::chrono::milliseconds duration) {
    std::unique_lock lock(mutex_);
    return !wake_.wait_for(lock, duration, [this] { return stopping_.load(); });
}

void FaultInjector::stop() {
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_all();
}

std::string FaultInjector::absolutePattern(const std::string& pattern) {
    return !pattern.empty() && pattern.front() == '/' ? pattern : "/v1/" + pattern;
}

bool FaultInjector::globMatch(std::string_view pattern, std::string_view path) {
    // match[i][j]: the first i characters of the pattern match the first j of the path.
    size_t p = pattern.size();
    size_t n = path.size();
    std::vector<std::vector<char>> match(p + 1, std::vector<char>(n + 1, 0));
    match[0][0] = 1;
    for (size_t i = 1; i <= p; ++i) {
        bool star = pattern[i - 1] == '*';
        bool doubleStar = star && i >= 2 && pattern[i - 2] == '*';
        for (size_t j = 0; j <= n; ++j) {
            if (star) {
                // A star may match nothing, or extend by one character (never "/" unless
                // it is the second star of "**").
                bool extend = j > 0 && match[i][j - 1] && (doubleStar || path[j - 1] != '/');
                match[i][j] = match[i - 1][j] || extend;
            } else {
                match[i][j] = j > 0 && match[i - 1][j - 1] && pattern[i - 1] == path[j - 1];
            }
        }
    }
    return match[p][n] != 0;
}

}  // namespace tb::service

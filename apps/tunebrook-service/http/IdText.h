#pragma once

#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace tb::service {

// Service ids travel as decimal text. Anything else, "../x" included, is no id.
class IdText {
  public:
    static std::optional<int64_t> parse(const std::string& text) {
        if (text.empty() || text.size() > 18 ||
            text.find_first_not_of("0123456789") != std::string::npos) {
            return std::nullopt;
        }
        return std::stoll(text);
    }

    // The parts of a comma-joined list; null when there are more than `max` of them.
    static std::optional<std::vector<std::string>> split(const std::string& joined, size_t max) {
        std::vector<std::string> parts;
        std::stringstream stream(joined);
        std::string part;
        while (std::getline(stream, part, ',')) {
            if (parts.size() == max) {
                return std::nullopt;
            }
            parts.push_back(part);
        }
        return parts;
    }
};

}  // namespace tb::service

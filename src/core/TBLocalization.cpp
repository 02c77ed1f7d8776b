#include "core/TBLocalization.h"

#include <map>

#include <nlohmann/json.hpp>

namespace tb {

extern const char* const kEnglishStringsJSON;

namespace {

// The table is a constant of the program, parsed once on first use.
const std::map<std::string, std::string>& englishTexts() {
    static const std::map<std::string, std::string> texts = [] {
        std::map<std::string, std::string> table;
        const auto parsed = nlohmann::json::parse(kEnglishStringsJSON, nullptr, false);
        if (parsed.is_object()) {
            for (const auto& [key, value] : parsed.items()) {
                if (value.is_string()) {
                    table.emplace(key, value.get<std::string>());
                }
            }
        }
        return table;
    }();
    return texts;
}

}  // namespace

std::string TBLocalization::localizedString(const std::string& key) {
    const auto& texts = englishTexts();
    const auto found = texts.find(key);
    return found == texts.end() ? key : found->second;
}

std::string TBLocalization::localizedFormat(const std::string& key,
                                            const std::vector<std::string>& arguments) {
    const std::string format = localizedString(key);
    std::string result;
    size_t next = 0;
    for (size_t i = 0; i < format.size(); ++i) {
        if (format.compare(i, 2, "%@") == 0 && next < arguments.size()) {
            result += arguments[next++];
            ++i;
        } else {
            result += format[i];
        }
    }
    return result;
}

bool TBLocalization::hasText(const std::string& key) {
    return englishTexts().count(key) > 0;
}

}  // namespace tb

#include "tunebrook-service/catalogue/Vocabulary.h"

#include <algorithm>

namespace tb::service {

const std::vector<std::string>& Vocabulary::genres() {
    static const std::vector<std::string> values = {
        "rnb",       "dancehall", "afrobeats", "instrumental", "rap",  "electronic", "latin",
        "pop",       "podcast",   "rock",      "afropop",      "jazz", "country",    "world",
        "classical", "gospel",    "acapella",  "dj-mix",       "other"};
    return values;
}

const std::vector<std::string>& Vocabulary::periods() {
    static const std::vector<std::string> values = {"daily", "weekly", "monthly", "yearly",
                                                    "total"};
    return values;
}

const std::vector<std::string>& Vocabulary::tags() {
    static const std::vector<std::string> values = {"Trending", "Chill",  "Workout",
                                                    "Party",    "Focus",  "Throwback",
                                                    "Romance",  "Summer", "Street"};
    return values;
}

bool Vocabulary::isGenre(const std::string& value) {
    const auto& all = genres();
    return std::find(all.begin(), all.end(), value) != all.end();
}

bool Vocabulary::isPeriod(const std::string& value) {
    const auto& all = periods();
    return std::find(all.begin(), all.end(), value) != all.end();
}

}  // namespace tb::service

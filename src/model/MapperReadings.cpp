#include "model/MapperReadings.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <string_view>

#include "model/DateText.h"
#include "model/Item.h"
#include "model/TBDisplayUtils.h"
#include "model/TBUtil.h"
#include "platform/JSON.h"

namespace tb {

namespace {

// A decimal number written as text, wholly: an optional sign, digits with an optional
// fraction, an optional exponent. Nil for anything else, and for a value no double holds.
std::optional<double> decimalFromText(std::string_view text) {
    const bool plus = !text.empty() && text.front() == '+';
    if (plus) {
        text.remove_prefix(1);  // the parser takes a "-" only
    }
    const std::size_t first = !plus && !text.empty() && text.front() == '-' ? 1 : 0;
    // The parser would also take "inf" and "nan", which no service writes for a date.
    if (first >= text.size() ||
        !(std::isdigit(static_cast<unsigned char>(text[first])) || text[first] == '.')) {
        return std::nullopt;
    }
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

std::optional<std::string> MapperReadings::cleaned(const JSON& value) {
    const auto text = value.string();
    if (!text) {
        return std::nullopt;
    }
    return TBUtil::cleanString(*text);
}

bool MapperReadings::isYes(const JSON& value) {
    return value.stringValue() == "yes";
}

bool MapperReadings::isTastemaker(const JSON& value) {
    return value.stringValue() == "tastemaker";
}

std::int64_t MapperReadings::integerFromText(const JSON& value) {
    return TBUtil::integerFromText(value.stringValue()).value_or(0);
}

std::optional<double> MapperReadings::secondsSince1970(const JSON& value) {
    if (value.isNumber()) {
        return value.doubleValue();
    }
    if (const auto text = value.string()) {
        return decimalFromText(*text);
    }
    return std::nullopt;
}

std::optional<std::string> MapperReadings::dateText(const JSON& value) {
    const auto seconds = secondsSince1970(value);
    return seconds ? DateText::longDate(*seconds) : std::nullopt;
}

std::optional<std::string> MapperReadings::numberText(const JSON& value) {
    if (value.isBool()) {
        return value.boolValue() ? "1" : "0";  // a bool is a number box of 1 or 0
    }
    if (value.isNumber() || value.isString()) {
        return value.stringValue();
    }
    return std::nullopt;
}

std::optional<std::vector<std::int64_t>> MapperReadings::volumeData(const JSON& value) {
    const std::string text = TBUtil::cleanString(value.stringValue());
    if (text.empty()) {
        return std::nullopt;
    }
    std::vector<std::int64_t> samples;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find(',', start);
        if (end == std::string::npos) {
            end = text.size();
        }
        // Each part by the rule of numbers as text: " 2" and "4.0" are no integers.
        if (const auto sample = TBUtil::integerFromText(text.substr(start, end - start))) {
            samples.push_back(*sample);
        }
        start = end + 1;
    }
    return samples;
}

void MapperReadings::readSizedImages(Item& item, const JSON& json) {
    const std::string base = json["image_base"].stringValue();
    if (base.empty()) {
        item.originalImage = item.image;
        item.smallImage = item.image;
        return;
    }
    item.originalImage =
        base + "?width=" + std::to_string(TBDisplayUtils::musicOriginalImageSize());
    item.smallImage = base + "?width=" + std::to_string(TBDisplayUtils::musicSmallImageSize());
}

void MapperReadings::readStatistics(Item& item, const JSON& json) {
    const JSON stats = json["stats"];
    item.plays = numberText(stats["plays"]);
    item.favorites = numberText(stats["favorites"]);
    item.reposts = numberText(stats["reposts"]);
    item.playlists = numberText(stats["playlists"]);
    // Ranks are read as strings only: the service writes them as text, and a rank that comes
    // as a number is not one the charts show.
    const JSON rankings = stats["rankings"];
    item.rankDaily = rankings["daily"].string();
    item.rankWeekly = rankings["weekly"].string();
    item.rankMonthly = rankings["monthly"].string();
    item.rankYearly = rankings["yearly"].string();
    item.rankAllTime = rankings["total"].string();
}

}  // namespace tb

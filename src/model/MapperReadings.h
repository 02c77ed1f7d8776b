#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tb {

class JSON;
struct Item;

// The reading rules that the song, album, playlist and account mappers share.
class MapperReadings {
  public:
    // The string, cleaned (see TBUtil::cleanString); nil when the value is no string.
    static std::optional<std::string> cleaned(const JSON& value);
    // True when the string value is exactly "yes".
    static bool isYes(const JSON& value);
    // True when the string value is exactly "tastemaker".
    static bool isTastemaker(const JSON& value);
    // The string value read as a whole decimal number; 0 when it is none.
    static std::int64_t integerFromText(const JSON& value);
    // Seconds since 1970, a double: a number, or a text of a decimal number ("1600000000.5").
    // Nil otherwise.
    static std::optional<double> secondsSince1970(const JSON& value);
    // The long date text of seconds since 1970 (see DateText::longDate), or nil.
    static std::optional<std::string> dateText(const JSON& value);
    // A number's description, or a string as it is; nil for anything else.
    static std::optional<std::string> numberText(const JSON& value);
    // Samples from a text of integers separated by ",": cleaned, each part read as a number
    // from text (see TBUtil::integerFromText), the parts that aren't one dropped. Nil when
    // the text is empty.
    static std::optional<std::vector<std::int64_t>> volumeData(const JSON& value);

    // `originalImage` and `smallImage` from "image_base", or both `image` without one.
    static void readSizedImages(Item& item, const JSON& json);
    // `plays`, `favorites`, `reposts`, `playlists` (numbers or text) and the five ranks (text
    // only) from "stats".
    static void readStatistics(Item& item, const JSON& json);
};

}  // namespace tb

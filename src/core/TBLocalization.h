#pragma once

#include <string>
#include <vector>

namespace tb {

// User-visible text by localisation key. The key is the contract; the English texts live in
// resources/strings/en.json and are compiled in. A key without a text answers with the key
// itself, as the platform does, and a test keeps every key the code uses in the table.
class TBLocalization {
  public:
    static std::string localizedString(const std::string& key);

    // The text of `key` with each "%@" (in order) replaced by the next argument.
    static std::string localizedFormat(const std::string& key,
                                       const std::vector<std::string>& arguments);

    static bool hasText(const std::string& key);
};

}  // namespace tb

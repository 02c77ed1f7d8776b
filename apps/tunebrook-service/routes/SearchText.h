#pragma once

#include <string>
#include <vector>

namespace tb::service {

// LIKE patterns from a search text, with "%", "_" and "\" escaped so that the text only
// ever matches itself.
class SearchText {
  public:
    static std::string containsPattern(const std::string& query);
    static std::string prefixPattern(const std::string& query);
    static std::string exactPattern(const std::string& query);
    // The words of three letters or more, longest first, when the query has more than one
    // word; none otherwise.
    static std::vector<std::string> relatedWords(const std::string& query);
    static std::string sortWord(const std::string& sort);
    static std::string lower(const std::string& text);
};

}  // namespace tb::service

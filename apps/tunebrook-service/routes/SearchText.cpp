#include "tunebrook-service/routes/SearchText.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace tb::service {

namespace {

std::string escaped(const std::string& query) {
    std::string out;
    for (char c : query) {
        if (c == '%' || c == '_' || c == '\\') {
            out.push_back('\\');
        }
        out.push_back(c);
    }
    return out;
}

}  // namespace

std::string SearchText::containsPattern(const std::string& query) {
    return "%" + escaped(query) + "%";
}

std::string SearchText::prefixPattern(const std::string& query) {
    return escaped(query) + "%";
}

std::string SearchText::exactPattern(const std::string& query) {
    return escaped(query);
}

std::vector<std::string> SearchText::relatedWords(const std::string& query) {
    std::stringstream stream(query);
    std::string word;
    std::vector<std::string> words;
    int count = 0;
    while (stream >> word) {
        ++count;
        if (word.size() >= 3) {
            words.push_back(word);
        }
    }
    if (count < 2) {
        return {};
    }
    std::stable_sort(words.begin(), words.end(), [](const std::string& a, const std::string& b) {
        return a.size() > b.size();
    });
    return words;
}

std::string SearchText::sortWord(const std::string& sort) {
    if (sort == "popular" || sort == "plays") {
        return "popular";
    }
    if (sort == "recent" || sort == "newest") {
        return "recent";
    }
    return "relevance";
}

std::string SearchText::lower(const std::string& text) {
    std::string out = text;
    for (auto& c : out) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return out;
}

}  // namespace tb::service

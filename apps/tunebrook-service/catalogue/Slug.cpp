#include "tunebrook-service/catalogue/Slug.h"

namespace tb::service {

namespace {

constexpr size_t kMaxLength = 65;

}  // namespace

std::string Slug::from(const std::string& text) {
    std::string out;
    bool hyphen = false;
    for (unsigned char c : text) {
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
            out.push_back(static_cast<char>(c));
            hyphen = false;
        } else if (c >= 'A' && c <= 'Z') {
            out.push_back(static_cast<char>(c - 'A' + 'a'));
            hyphen = false;
        } else if (!out.empty() && !hyphen) {
            out.push_back('-');
            hyphen = true;
        }
        if (out.size() >= kMaxLength) {
            break;
        }
    }
    while (!out.empty() && out.back() == '-') {
        out.pop_back();
    }
    return out.empty() ? "untitled" : out;
}

bool Slug::valid(const std::string& slug) {
    return !slug.empty() && slug.size() <= kMaxLength &&
           slug.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-") == std::string::npos;
}

}  // namespace tb::service

#include "tunebrook-service/http/Paging.h"

#include "tunebrook-service/core/Crypto.h"
#include "tunebrook-service/http/ApiCall.h"

namespace tb::service {

namespace {

constexpr int kMaxOffset = 10000000;

std::optional<int> boundedNumber(const std::string& text, int low, int high) {
    if (text.empty() || text.size() > 9 ||
        text.find_first_not_of("0123456789") != std::string::npos) {
        return std::nullopt;
    }
    int value = std::stoi(text);
    if (value < low || value > high) {
        return std::nullopt;
    }
    return value;
}

int base64Value(char c) {
    if (c >= 'A' && c <= 'Z') {
        return c - 'A';
    }
    if (c >= 'a' && c <= 'z') {
        return c - 'a' + 26;
    }
    if (c >= '0' && c <= '9') {
        return c - '0' + 52;
    }
    if (c == '+') {
        return 62;
    }
    if (c == '/') {
        return 63;
    }
    return -1;
}

std::optional<std::string> unbase64(const std::string& text) {
    if (text.empty() || text.size() % 4 != 0 || text.size() > 64) {
        return std::nullopt;
    }
    std::string out;
    unsigned buffer = 0;
    int bits = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '=') {
            if (i < text.size() - 2) {
                return std::nullopt;
            }
            break;
        }
        int v = base64Value(text[i]);
        if (v < 0) {
            return std::nullopt;
        }
        buffer = (buffer << 6) | static_cast<unsigned>(v);
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            out.push_back(static_cast<char>((buffer >> bits) & 0xff));
        }
    }
    return out;
}

}  // namespace

std::optional<int> Paging::page(const ApiCall& call) {
    auto value = call.param("page");
    if (!value) {
        return 1;
    }
    return boundedNumber(*value, 1, kMaxPage);
}

std::optional<int> Paging::offset(const ApiCall& call) {
    auto value = call.param("paging_token");
    if (!value || value->empty()) {
        return 0;
    }
    return decodeToken(*value);
}

std::string Paging::token(int offset) {
    return Crypto::base64("offset:" + std::to_string(offset));
}

std::optional<int> Paging::decodeToken(const std::string& token) {
    auto text = unbase64(token);
    const std::string prefix = "offset:";
    if (!text || text->compare(0, prefix.size(), prefix) != 0) {
        return std::nullopt;
    }
    return boundedNumber(text->substr(prefix.size()), 0, kMaxOffset);
}

}  // namespace tb::service

#include "core/URLComponents.h"

#include <cctype>
#include <charconv>

namespace tb {

namespace {

bool isSchemeCharacter(char c, bool first) {
    const auto u = static_cast<unsigned char>(c);
    if (std::isalpha(u)) {
        return true;
    }
    return !first && (std::isdigit(u) || c == '+' || c == '-' || c == '.');
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

// Splits "user@host:port" into host and port; false when the port is not a number.
bool splitAuthority(const std::string& authority, URLComponents& parts) {
    std::string hostPort = authority;
    if (const auto at = hostPort.rfind('@'); at != std::string::npos) {
        hostPort = hostPort.substr(at + 1);
    }
    // A bracketed IPv6 literal keeps its colons.
    const auto closing = hostPort.rfind(']');
    const auto colon = hostPort.rfind(':');
    if (colon != std::string::npos && (closing == std::string::npos || colon > closing)) {
        const std::string digits = hostPort.substr(colon + 1);
        hostPort.resize(colon);
        if (!digits.empty()) {
            int port = 0;
            const auto [end, error] =
                std::from_chars(digits.data(), digits.data() + digits.size(), port);
            if (error != std::errc() || end != digits.data() + digits.size() || port < 0 ||
                port > 65535) {
                return false;
            }
            parts.port = port;
        }
    }
    parts.host = hostPort;
    return true;
}

}  // namespace

std::optional<URLComponents> URLComponents::parse(const std::string& url) {
    const auto colon = url.find(':');
    if (colon == std::string::npos || colon == 0) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < colon; ++i) {
        if (!isSchemeCharacter(url[i], i == 0)) {
            return std::nullopt;
        }
    }
    URLComponents parts;
    parts.scheme = url.substr(0, colon);
    std::string rest = url.substr(colon + 1);

    if (const auto hash = rest.find('#'); hash != std::string::npos) {
        parts.fragment = rest.substr(hash + 1);
        rest.resize(hash);
    }
    if (const auto question = rest.find('?'); question != std::string::npos) {
        parts.query = rest.substr(question + 1);
        rest.resize(question);
    }
    if (rest.rfind("//", 0) == 0) {
        const auto slash = rest.find('/', 2);
        const std::string authority =
            rest.substr(2, slash == std::string::npos ? slash : slash - 2);
        if (!splitAuthority(authority, parts)) {
            return std::nullopt;
        }
        rest = slash == std::string::npos ? std::string() : rest.substr(slash);
    }
    parts.path = percentDecode(rest);
    if (parts.path.size() > 1 && parts.path.back() == '/') {
        parts.path.pop_back();
    }
    return parts;
}

std::string URLComponents::origin() const {
    if (host.empty()) {
        return {};
    }
    std::string result = scheme + "://" + host;
    if (port) {
        result += ":" + std::to_string(*port);
    }
    return result;
}

std::string URLComponents::percentDecode(const std::string& text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            const int high = hexValue(text[i + 1]);
            const int low = hexValue(text[i + 2]);
            if (high >= 0 && low >= 0) {
                result += static_cast<char>(high * 16 + low);
                i += 2;
                continue;
            }
        }
        result += text[i];
    }
    return result;
}

}  // namespace tb

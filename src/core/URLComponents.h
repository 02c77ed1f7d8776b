#pragma once

#include <optional>
#include <string>

namespace tb {

// The parts of an absolute URL ("scheme://user@host:port/path?query#fragment"), split the
// way the app reads links: the path is percent-decoded and loses a trailing "/", the query
// and fragment stay as written. A URL without a scheme has no parts.
struct URLComponents {
    std::string scheme;
    std::string host;  // empty when the URL has no authority ("tunebrook:song")
    std::optional<int> port;
    std::string path;   // decoded; "" or starting with "/"
    std::string query;  // without "?"; "" when absent
    std::string fragment;

    static std::optional<URLComponents> parse(const std::string& url);

    // "scheme://host[:port]", the origin of the URL; empty without a host.
    std::string origin() const;

    // Decodes "%XX" escapes; a malformed escape is kept as written.
    static std::string percentDecode(const std::string& text);
};

}  // namespace tb

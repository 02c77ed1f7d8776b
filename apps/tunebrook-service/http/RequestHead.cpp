#include "tunebrook-service/http/RequestHead.h"

#include <cctype>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

namespace tb::service {

namespace {

constexpr std::string_view kEmptyBody = "Content-Length: 0\r\n";

RequestHead refusal(int status) {
    RequestHead head;
    head.state = RequestHead::State::refused;
    head.status = status;
    return head;
}

bool sameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i]))) {
            return false;
        }
    }
    return true;
}

std::string_view trim(std::string_view text) {
    size_t start = text.find_first_not_of(" \t");
    size_t end = text.find_last_not_of(" \t");
    return start == std::string_view::npos ? std::string_view()
                                           : text.substr(start, end - start + 1);
}

std::optional<uint64_t> number(std::string_view text) {
    if (text.empty() || text.size() > 18 || text.find_first_not_of("0123456789") != text.npos) {
        return std::nullopt;
    }
    uint64_t value = 0;
    for (char c : text) {
        value = value * 10 + static_cast<uint64_t>(c - '0');
    }
    return value;
}

// A header line, without its line end.
struct Line {
    size_t start;
    size_t end;
};

// The header lines after the request line, up to the blank line; a refusal or an
// incomplete head when they don't all fit the limits yet.
std::optional<RequestHead> headerLines(const std::string& bytes,
                                       size_t cursor,
                                       const ConnectionLimits& limits,
                                       std::vector<Line>& lines,
                                       size_t& headEnd) {
    for (;;) {
        size_t end = bytes.find('\n', cursor);
        if (end == std::string::npos) {
            bool tooLarge =
                bytes.size() > limits.maxHead || bytes.size() - cursor >= limits.maxHeaderLine;
            return tooLarge ? refusal(431) : RequestHead{};
        }
        if (end + 1 > limits.maxHead || end + 1 - cursor > limits.maxHeaderLine) {
            return refusal(431);
        }
        // The library skips a line without CR LF, which would leave it waiting for more.
        if (end == cursor || bytes[end - 1] != '\r' || bytes[cursor] == ' ' ||
            bytes[cursor] == '\t') {
            return refusal(400);
        }
        if (end == cursor + 1) {
            headEnd = end + 1;
            return std::nullopt;
        }
        if (lines.size() == limits.maxHeaders) {
            return refusal(431);
        }
        lines.push_back({cursor, end - 1});
        cursor = end + 1;
    }
}

}  // namespace

RequestHead RequestHead::examine(std::string& bytes, const ConnectionLimits& limits) {
    size_t lineEnd = bytes.find('\n');
    if (lineEnd == std::string::npos) {
        return bytes.size() >= limits.maxLine ? refusal(414) : RequestHead{};
    }
    if (lineEnd + 1 > limits.maxLine) {
        return refusal(414);
    }
    if (lineEnd < 2 || bytes[lineEnd - 1] != '\r') {
        return refusal(400);
    }
    std::vector<Line> lines;
    size_t headEnd = 0;
    if (auto early = headerLines(bytes, lineEnd + 1, limits, lines, headEnd)) {
        return *early;
    }

    std::optional<uint64_t> length;
    bool transferCoded = false;
    bool chunked = false;
    std::vector<size_t> ranges;
    for (const Line& line : lines) {
        std::string_view text(bytes.data() + line.start, line.end - line.start);
        size_t colon = text.find(':');
        if (colon == 0 || colon == text.npos) {
            return refusal(400);
        }
        std::string_view name = text.substr(0, colon);
        std::string_view value = trim(text.substr(colon + 1));
        if (sameName(name, "Content-Length")) {
            auto given = number(value);
            // Two different lengths leave the end of the body open to either reading.
            if (!given || (length && *length != *given)) {
                return refusal(400);
            }
            length = given;
        } else if (sameName(name, "Transfer-Encoding")) {
            transferCoded = true;
            chunked = value.size() >= 7 && sameName(value.substr(value.size() - 7), "chunked");
        } else if (sameName(name, "Range")) {
            ranges.push_back(line.start);
        }
    }
    if ((transferCoded && !chunked) || (transferCoded && length)) {
        return refusal(400);
    }
    if (length && *length > limits.maxBody) {
        return refusal(413);
    }
    std::string_view method(bytes.data(), bytes.find(' ') < lineEnd ? bytes.find(' ') : 0);
    bool bodyless = !length && !chunked;
    if (bodyless && (method == "POST" || method == "PUT" || method == "PATCH")) {
        return refusal(411);
    }

    RequestHead head;
    head.state = State::ready;
    head.bodyLength = length.value_or(0);
    head.chunked = chunked;
    // Rewritten from the end so that the earlier positions stay valid.
    if (bodyless && method == "DELETE") {
        bytes.insert(headEnd - 2, kEmptyBody);
        headEnd += kEmptyBody.size();
    }
    for (auto at = ranges.rbegin(); at != ranges.rend(); ++at) {
        bytes.replace(*at, std::strlen("Range"), kRangeHeader);
        headEnd += std::strlen(kRangeHeader) - std::strlen("Range");
    }
    head.length = headEnd;
    return head;
}

}  // namespace tb::service

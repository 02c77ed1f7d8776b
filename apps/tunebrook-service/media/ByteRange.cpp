#include "tunebrook-service/media/ByteRange.h"

#include <optional>

namespace tb::service {

namespace {

std::optional<uint64_t> number(const std::string& text) {
    if (text.empty() || text.size() > 18 ||
        text.find_first_not_of("0123456789") != std::string::npos) {
        return std::nullopt;
    }
    return std::stoull(text);
}

std::string trim(const std::string& text) {
    size_t start = text.find_first_not_of(" \t");
    size_t end = text.find_last_not_of(" \t");
    return start == std::string::npos ? std::string() : text.substr(start, end - start + 1);
}

}  // namespace

ByteRange ByteRange::parse(const std::string& header, uint64_t size) {
    ByteRange whole;
    whole.last = size == 0 ? 0 : size - 1;
    const std::string unit = "bytes=";
    std::string value = trim(header);
    if (value.compare(0, unit.size(), unit) != 0 || value.find(',') != std::string::npos) {
        return whole;
    }
    std::string bounds = trim(value.substr(unit.size()));
    size_t dash = bounds.find('-');
    if (dash == std::string::npos) {
        return whole;
    }
    std::string from = trim(bounds.substr(0, dash));
    std::string to = trim(bounds.substr(dash + 1));
    ByteRange range;
    range.kind = Kind::partial;
    if (from.empty()) {
        // "-N": the last N bytes.
        auto suffix = number(to);
        if (!suffix) {
            return whole;
        }
        if (*suffix == 0 || size == 0) {
            range.kind = Kind::unsatisfiable;
            return range;
        }
        range.first = *suffix >= size ? 0 : size - *suffix;
        range.last = size - 1;
        return range;
    }
    auto first = number(from);
    auto last = to.empty() ? std::optional<uint64_t>(UINT64_MAX) : number(to);
    if (!first || !last || *last < *first) {
        return whole;
    }
    if (*first >= size) {
        range.kind = Kind::unsatisfiable;
        return range;
    }
    range.first = *first;
    range.last = *last >= size ? size - 1 : *last;
    return range;
}

}  // namespace tb::service

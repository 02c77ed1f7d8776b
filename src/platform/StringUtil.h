#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tb {

// Small text helpers shared by every layer. All of them work on bytes and know only ASCII:
// letters outside A-Z keep their case, and UTF-8 sequences pass through untouched.

// The blanks a C locale's isspace knows.
inline constexpr std::string_view kAsciiWhitespace = " \t\n\v\f\r";

// The text without leading and trailing bytes of `blanks`.
std::string trimmed(std::string_view text, std::string_view blanks = kAsciiWhitespace);

// The parts between occurrences of `separator` (not empty), empty parts included:
// "a,,b" -> "a", "", "b"; "" -> "".
std::vector<std::string_view> split(std::string_view text, std::string_view separator);

// The parts with `separator` between each two.
std::string joined(const std::vector<std::string>& parts, std::string_view separator);

std::string lowercased(std::string text);
std::string uppercased(std::string text);

bool equalsIgnoringCase(std::string_view a, std::string_view b);

}  // namespace tb

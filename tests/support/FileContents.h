#pragma once

#include <string>
#include <vector>

namespace tb::test {

// The whole file as bytes; empty when it can't be read.
std::string readFileText(const std::string& path);

// Replaces the file with `text`; false when it can't be written.
bool writeFileText(const std::string& path, const std::string& text);

// The names in a folder (not "." or ".."), sorted.
std::vector<std::string> folderEntries(const std::string& folder);

}  // namespace tb::test

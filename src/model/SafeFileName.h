#pragma once

#include <string>
#include <string_view>

namespace tb {

// The file name that stands for a service id (or any foreign text) inside a folder of ours.
// Letters, digits, ".", "_" and "-" are kept; every other byte is written as "%XX". A
// leading "." is written "%2E" too, so no name is ".", ".." or hidden, and no name holds a
// separator: the file can never leave its folder. The empty id gives "_". Different ids give
// different names (the only exception: the empty id and "_").
std::string safeFileName(std::string_view id);

}  // namespace tb

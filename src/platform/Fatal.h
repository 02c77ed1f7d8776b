#pragma once

#include <string_view>

namespace tb {

// Logs the text with its source position and aborts. For the programming faults that the
// system says stop the process; everything else fails as a value.
[[noreturn]] void fatalError(const char* file, int line, std::string_view text);

}  // namespace tb

#define TB_FATAL(text) ::tb::fatalError(__FILE__, __LINE__, (text))

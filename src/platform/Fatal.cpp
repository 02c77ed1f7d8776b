#include "platform/Fatal.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/Log.h"

namespace tb {

void fatalError(const char* file, int line, std::string_view text) {
    std::string message = "FATAL ";
    message += file;
    message += ':';
    message += std::to_string(line);
    message += ": ";
    message += text;
    logLine(message);
    // The sink may be a test's buffer; the text must reach the terminal too.
    std::fprintf(stderr, "%s\n", message.c_str());
    std::fflush(stderr);
    std::abort();
}

}  // namespace tb

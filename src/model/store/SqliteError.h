#pragma once

#include <string>

namespace tb {

// What SQLite said when a call failed: its primary and extended result codes, the errno of
// the failing system call when there was one, and its message.
struct SqliteError {
    int code = 0;
    int extendedCode = 0;
    int systemErrno = 0;
    std::string message;
};

}  // namespace tb

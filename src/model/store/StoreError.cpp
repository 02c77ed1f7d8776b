#include "model/store/StoreError.h"

#include <cerrno>

#include <sqlite3.h>

#include "model/store/SqliteError.h"

namespace tb::StoreError {

namespace {

std::int64_t codeFor(const SqliteError& error, bool opening) {
    // A full disk is SQLITE_FULL; a write refused for a quota or a file size limit comes
    // back as a write I/O error, often without the system's reason: it counts as a full
    // disk too, which is what the listener can do something about.
    bool outOfSpace =
        error.extendedCode == SQLITE_IOERR_WRITE ||
        (error.code == SQLITE_IOERR && (error.systemErrno == ENOSPC || error.systemErrno == EFBIG ||
                                        error.systemErrno == EDQUOT));
    switch (error.code) {
        case SQLITE_CORRUPT:
            return kCorrupt;
        case SQLITE_NOTADB:
            return kNotADatabase;
        case SQLITE_FULL:
            return kDiskFull;
        case SQLITE_IOERR:
        case SQLITE_CANTOPEN:
        case SQLITE_PERM:
        case SQLITE_READONLY:
        case SQLITE_AUTH:
            return outOfSpace ? kDiskFull : kUnreadable;
        default:
            return opening ? kUnreadable : error.code;
    }
}

}  // namespace

Error fromSqlite(const SqliteError& error, bool opening, const std::string& path) {
    Error result;
    result.domain = kDomain;
    result.code = codeFor(error, opening);
    result.message =
        (opening ? "The store could not be opened: " : "The store failed: ") + error.message;
    result.userInfo[kUnderlyingErrorKey] = "SQLite error " + std::to_string(error.code) + " (" +
                                           std::to_string(error.extendedCode) +
                                           "): " + error.message;
    result.userInfo[kSQLiteErrorCodeKey] = std::to_string(error.extendedCode);
    result.userInfo[kFilePathKey] = path;
    return result;
}

Error noStore() {
    Error result;
    result.domain = kDomain;
    result.code = kNoStore;
    result.message = "The store has no file open";
    return result;
}

}  // namespace tb::StoreError

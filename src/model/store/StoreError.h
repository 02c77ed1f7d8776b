#pragma once

#include <cstdint>
#include <string>

#include "platform/Error.h"

namespace tb {

struct SqliteError;

// Errors of the object store. The codes are the ones the store's error policy reads: 11 and
// 13 are SQLite's own codes for a corrupt database and a full disk, 256 and 259 the file-read
// codes "unknown read error" and "corrupt file". The user info carries SQLite's own account.
namespace StoreError {

inline constexpr const char* kDomain = "TBStoreErrorDomain";

inline constexpr std::int64_t kCorrupt = 11;
inline constexpr std::int64_t kDiskFull = 13;
inline constexpr std::int64_t kUnreadable = 256;
inline constexpr std::int64_t kNotADatabase = 259;
// A fetch or save on a coordinator that has no store open.
inline constexpr std::int64_t kNoStore = 1000;

// "SQLite error 26 (26): file is not a database"
inline constexpr const char* kUnderlyingErrorKey = "NSUnderlyingError";
// SQLite's extended result code, in decimal.
inline constexpr const char* kSQLiteErrorCodeKey = "SQLiteErrorCode";
inline constexpr const char* kFilePathKey = "NSFilePath";

// The store error for a failed SQLite call. When `opening`, any failure to read the file that
// is neither corruption nor a full disk is 256; later, other failures keep SQLite's code.
Error fromSqlite(const SqliteError& error, bool opening, const std::string& path);
Error noStore();

}  // namespace StoreError

}  // namespace tb

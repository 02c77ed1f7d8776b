#include "platform/linux/AtomicFile.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/AtomicWrite.h"
#include "platform/BackupExclusion.h"
#include "platform/ErrorReporter.h"
#include "platform/JsonLimits.h"
#include "platform/Log.h"

namespace tb {

namespace {

// The extended attribute desktop backup tools read to leave a file out.
constexpr const char* kBackupAttribute = "user.xdg.robots.backup";
constexpr const char* kBackupExcluded = "false";

std::string folderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool fail(std::string* reason, const std::string& what) {
    if (reason) {
        *reason = what + ": " + std::strerror(errno);
    }
    return false;
}

bool syncFolder(const std::string& folder) {
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    return synced;
}

}  // namespace

bool writeAll(int fd, std::string_view contents) {
    while (!contents.empty()) {
        const ssize_t written = ::write(fd, contents.data(), contents.size());
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        contents.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool writeFileAtomically(const std::string& path,
                         std::string_view contents,
                         mode_t mode,
                         std::string* reason) {
    const std::string folder = folderOf(path);
    // A short hidden name: the target's own name may already be as long as a name can be.
    // mkostemp creates it exclusively, so a symlink planted under that name is refused
    // rather than followed, and the rename replaces a symlink at the target instead of
    // writing through it: the file stays in its folder.
    std::string temporary = folder + "/.atomic-write-XXXXXX";
    const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) {
        return fail(reason, "can't create a temporary file in " + folder);
    }
    bool written = ::fchmod(fd, mode) == 0 && writeAll(fd, contents) && ::fsync(fd) == 0;
    int writeErrno = errno;
    if (::close(fd) != 0 && written) {
        written = false;
        writeErrno = errno;
    }
    if (!written) {
        ::unlink(temporary.c_str());
        errno = writeErrno;
        return fail(reason, "can't write " + temporary);
    }
    if (::rename(temporary.c_str(), path.c_str()) != 0) {
        const int renameErrno = errno;
        ::unlink(temporary.c_str());
        errno = renameErrno;
        return fail(reason, "can't rename " + temporary + " to " + path);
    }
    // The new file is in place, but until the folder is flushed the rename itself may not
    // survive a power loss: that is no durable write, so it is reported as a failure.
    if (!syncFolder(folder)) {
        return fail(reason, "can't flush the folder " + folder);
    }
    return true;
}

FileRead readWholeFile(const std::string& path, std::string& contents, std::string* reason) {
    // O_NONBLOCK: a pipe planted in a file's place must not hang the app at the open.
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        if (errno == ENOENT) {
            return FileRead::Missing;
        }
        fail(reason, "can't open " + path);
        return FileRead::Failed;
    }
    struct stat status {};
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(fd);
        if (reason) {
            *reason = "can't read " + path + ": not a plain file";
        }
        return FileRead::Failed;
    }
    contents.clear();
    char buffer[65536];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got == 0) {
            break;
        }
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            fail(reason, "can't read " + path);
            ::close(fd);
            return FileRead::Failed;
        }
        contents.append(buffer, static_cast<std::size_t>(got));
    }
    ::close(fd);
    return FileRead::Read;
}

namespace {

// "<path>.corrupt-<time>", with a number after it when that name is taken: two broken files
// within one second keep both.
std::string asidePathFor(const std::string& path) {
    const std::string stamp = std::to_string(static_cast<long long>(std::time(nullptr)));
    std::string aside = path + ".corrupt-" + stamp;
    for (int n = 1; ::access(aside.c_str(), F_OK) == 0; ++n) {
        aside = path + ".corrupt-" + stamp + "-" + std::to_string(n);
    }
    return aside;
}

}  // namespace

void keepCopyAside(const std::string& path,
                   ErrorReporter& errors,
                   const std::string& domain,
                   std::int64_t code,
                   const std::string& reason) {
    const std::string aside = asidePathFor(path);
    ErrorInfo info{{"path", path}, {"reason", reason}};
    std::string contents;
    if (readWholeFile(path, contents, nullptr) == FileRead::Read &&
        writeFileAtomically(aside, contents, 0600)) {
        info["copiedTo"] = aside;
    }
    errors.recordError(
        Error{domain, code, "part of a state file could not be read and was dropped", info});
    logLine("[" + domain + "] dropped part of " + path + " (" + reason + ")");
}

void setBrokenFileAside(const std::string& path,
                        ErrorReporter& errors,
                        const std::string& domain,
                        std::int64_t code,
                        const std::string& reason) {
    const std::string aside = asidePathFor(path);
    ErrorInfo info{{"path", path}, {"reason", reason}};
    if (::rename(path.c_str(), aside.c_str()) == 0) {
        info["movedTo"] = aside;
    }
    errors.recordError(
        Error{domain, code, "a state file could not be read and was set aside", info});
    logLine("[" + domain + "] set aside " + path + " (" + reason + ")");
}

std::optional<nlohmann::json> readJsonObjectFile(const std::string& path,
                                                 ErrorReporter& errors,
                                                 const std::string& domain) {
    std::string text;
    std::string reason;
    switch (readWholeFile(path, text, &reason)) {
        case FileRead::Missing:
            return std::nullopt;
        case FileRead::Failed:
            setBrokenFileAside(path, errors, domain, kFileUnreadable, reason);
            return std::nullopt;
        case FileRead::Read:
            break;
    }
    if (!jsonNestingWithin(text)) {
        setBrokenFileAside(path, errors, domain, kFileCorrupt, "nested too deeply");
        return std::nullopt;
    }
    auto document = nlohmann::json::parse(text, nullptr, false);
    if (!document.is_object()) {
        setBrokenFileAside(path, errors, domain, kFileCorrupt,
                           document.is_discarded() ? "not JSON" : "not a JSON object");
        return std::nullopt;
    }
    return document;
}

bool atomicWrite(const std::string& path, std::string_view bytes, std::string* reason) {
    return writeFileAtomically(path, bytes, 0644, reason);
}

bool readFileBytes(const std::string& path, std::string& bytes, std::string* reason) {
    const FileRead read = readWholeFile(path, bytes, reason);
    if (read == FileRead::Missing && reason) {
        *reason = "can't open " + path + ": no such file";
    }
    return read == FileRead::Read;
}

bool excludeFromBackup(const std::string& path) {
    // lsetxattr: a symlink is refused (user attributes can't be set on one), never followed
    // to mark a file outside our folders.
    return ::lsetxattr(path.c_str(), kBackupAttribute, kBackupExcluded,
                       std::strlen(kBackupExcluded), 0) == 0;
}

bool isExcludedFromBackup(const std::string& path) {
    char value[16] = {};
    const ssize_t size = ::lgetxattr(path.c_str(), kBackupAttribute, value, sizeof value - 1);
    return size == static_cast<ssize_t>(std::strlen(kBackupExcluded)) &&
           std::memcmp(value, kBackupExcluded, static_cast<std::size_t>(size)) == 0;
}

}  // namespace tb

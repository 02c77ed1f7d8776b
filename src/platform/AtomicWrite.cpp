#include "platform/AtomicWrite.h"

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace tb {

namespace {

// A short hidden name beside the target (a target's own name may already be as long as a
// name can be). The process id and a counter keep two writers of one folder, in one process
// or two, off each other's temporary file.
std::string temporaryPathFor(const std::string& path) {
    static std::atomic<unsigned> counter{0};
    const auto folder = std::filesystem::path(path).parent_path();
    return (folder / (".atomic-write-" + std::to_string(::getpid()) + "-" +
                      std::to_string(counter.fetch_add(1))))
        .string();
}

bool writeAndFlush(const std::string& path, std::string_view bytes) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0) {
        return false;
    }
    bool ok = true;
    for (size_t done = 0; ok && done < bytes.size();) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        ok = n > 0;
        done += ok ? static_cast<size_t>(n) : 0;
    }
    // On disk before the rename, so that a crash leaves the old file or the whole new one.
    ok = ok && ::fsync(fd) == 0;
    return ::close(fd) == 0 && ok;
}

}  // namespace

bool atomicWrite(const std::string& path, std::string_view bytes, std::string* reason) {
    const std::string temporary = temporaryPathFor(path);
    std::error_code ignored;
    if (!writeAndFlush(temporary, bytes)) {
        std::filesystem::remove(temporary, ignored);
        if (reason) {
            *reason = "can't write " + temporary;
        }
        return false;
    }
    std::error_code renamed;
    std::filesystem::rename(temporary, path, renamed);
    if (renamed) {
        std::filesystem::remove(temporary, ignored);
        if (reason) {
            *reason = "can't replace " + path + ": " + renamed.message();
        }
        return false;
    }
    return true;
}

bool readFileBytes(const std::string& path, std::string& bytes, std::string* reason) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream read;
    read << file.rdbuf();
    if (!file || std::filesystem::is_directory(path)) {
        if (reason) {
            *reason = "can't read " + path;
        }
        return false;
    }
    bytes = std::move(read).str();
    return true;
}

}  // namespace tb

#include "tunebrook-service/core/FileUtil.h"

#include <cstdio>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tb::service {

bool FileUtil::writeAtomically(const std::string& path, const std::string& content, int mode) {
    std::string temp = path + ".tmp" + std::to_string(getpid());
    int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    if (fd < 0) {
        return false;
    }
    // The mode given at creation is narrowed by the umask; set it exactly.
    fchmod(fd, static_cast<mode_t>(mode));
    size_t written = 0;
    while (written < content.size()) {
        ssize_t n = ::write(fd, content.data() + written, content.size() - written);
        if (n <= 0) {
            ::close(fd);
            ::unlink(temp.c_str());
            return false;
        }
        written += static_cast<size_t>(n);
    }
    bool ok = ::fsync(fd) == 0;
    ok = ::close(fd) == 0 && ok;
    if (!ok || std::rename(temp.c_str(), path.c_str()) != 0) {
        ::unlink(temp.c_str());
        return false;
    }
    return true;
}

std::optional<std::string> FileUtil::read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

bool FileUtil::exists(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0;
}

std::optional<long long> FileUtil::size(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return std::nullopt;
    }
    return static_cast<long long>(info.st_size);
}

int FileUtil::openInside(const std::string& folder, const std::string& path) {
    if (path.compare(0, folder.size() + 1, folder + "/") != 0) {
        return -1;
    }
    int at = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    size_t start = folder.size() + 1;
    while (at >= 0) {
        size_t slash = path.find('/', start);
        std::string name = path.substr(start, slash == std::string::npos ? slash : slash - start);
        bool last = slash == std::string::npos;
        // Non-blocking, so that a FIFO in a file's place can't hold the caller.
        int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | (last ? O_NONBLOCK : O_DIRECTORY);
        int next = name.empty() || name == ".." ? -1 : ::openat(at, name.c_str(), flags);
        ::close(at);
        if (last) {
            struct stat info {};
            if (next >= 0 && (::fstat(next, &info) != 0 || !S_ISREG(info.st_mode))) {
                ::close(next);
                next = -1;
            }
            return next;
        }
        at = next;
        start = slash + 1;
    }
    return -1;
}

}  // namespace tb::service

#include "platform/linux/JsonLinesFile.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

#include "platform/Log.h"

namespace tb {

JsonLinesFile::JsonLinesFile(std::string path) : path_(std::move(path)) {
    fd_ = ::open(path_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd_ < 0) {
        logLine("can't open " + path_ + ": " + std::strerror(errno));
    }
}

JsonLinesFile::~JsonLinesFile() {
    if (fd_ >= 0) {
        ::close(fd_);
    }
}

bool JsonLinesFile::appendLine(std::string_view record) {
    std::string line(record);
    line += '\n';
    std::lock_guard lock(mutex_);
    if (fd_ < 0) {
        return false;
    }
    // One write() per line: with O_APPEND the kernel places it whole at the end. A short
    // write (a full disk) is not retried, since the rest would land apart from its start.
    ssize_t written;
    do {
        written = ::write(fd_, line.data(), line.size());
    } while (written < 0 && errno == EINTR);
    return written == static_cast<ssize_t>(line.size());
}

}  // namespace tb

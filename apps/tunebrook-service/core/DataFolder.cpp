#include "tunebrook-service/core/DataFolder.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tb::service {

namespace fs = std::filesystem;

DataFolder::DataFolder(std::string path) : path_(std::move(path)) {}

DataFolder::~DataFolder() {
    if (lock_ >= 0) {
        ::close(lock_);
    }
}

bool DataFolder::claim(std::string& error) {
    std::error_code ec;
    fs::path folder(path_);
    if (folder.has_parent_path()) {
        fs::create_directories(folder.parent_path(), ec);
    }
    if (::mkdir(path_.c_str(), kFolderMode) != 0 && errno != EEXIST) {
        error = "cannot create " + path_ + ": " + std::strerror(errno);
        return false;
    }
    std::string lockPath = path_ + "/service.lock";
    lock_ = ::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kFileMode);
    if (lock_ < 0) {
        error = "cannot open " + lockPath + ": " + std::strerror(errno);
        return false;
    }
    if (::flock(lock_, LOCK_EX | LOCK_NB) != 0) {
        error = errno == EWOULDBLOCK ? "another service is already using " + path_
                                     : "cannot lock " + lockPath + ": " + std::strerror(errno);
        ::close(lock_);
        lock_ = -1;
        return false;
    }
    return true;
}

bool DataFolder::makePrivate(std::string& error) const {
    // The folder first: once it is closed to others, nobody else can swap what is inside.
    if (::chmod(path_.c_str(), kFolderMode) != 0) {
        error = "cannot make " + path_ + " private: " + std::strerror(errno);
        return false;
    }
    std::error_code ec;
    for (fs::recursive_directory_iterator it(path_, ec), end; !ec && it != end; it.increment(ec)) {
        auto type = it->symlink_status(ec).type();
        unsigned mode = type == fs::file_type::directory ? kFolderMode : kFileMode;
        if (type != fs::file_type::symlink && ::chmod(it->path().c_str(), mode) != 0) {
            error = "cannot make " + it->path().string() + " private: " + std::strerror(errno);
            return false;
        }
    }
    if (ec) {
        error = "cannot read " + path_ + ": " + ec.message();
        return false;
    }
    return true;
}

}  // namespace tb::service

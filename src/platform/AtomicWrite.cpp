#include "platform/AtomicWrite.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace tb {

namespace {

// A short hidden name beside the target (a target's own name may already be as long as a
// name can be). Names differ between writes of one process, so that two writes of one
// target never share a temporary file.
std::string temporaryPathFor(const std::string& path) {
    static std::atomic<unsigned> counter{0};
    const auto folder = std::filesystem::path(path).parent_path();
    return (folder / (".atomic-write-" + std::to_string(counter.fetch_add(1)))).string();
}

}  // namespace

bool atomicWrite(const std::string& path, std::string_view bytes, std::string* reason) {
    const std::string temporary = temporaryPathFor(path);
    std::error_code ignored;
    {
        std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        file.flush();
        if (!file) {
            file.close();
            std::filesystem::remove(temporary, ignored);
            if (reason) {
                *reason = "can't write " + temporary;
            }
            return false;
        }
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

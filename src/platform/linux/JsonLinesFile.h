#pragma once

#include <mutex>
#include <string>
#include <string_view>

namespace tb {

// A file that only grows, one record per line. Each record goes out in one write() on a
// descriptor opened with O_APPEND, so lines from several writers never interleave and a
// crash loses at most the line being written. A file that can't be opened is reported
// once on the log and the records are dropped. Safe from any thread.
class JsonLinesFile {
  public:
    explicit JsonLinesFile(std::string path);
    ~JsonLinesFile();
    JsonLinesFile(const JsonLinesFile&) = delete;
    JsonLinesFile& operator=(const JsonLinesFile&) = delete;

    // Appends `record` and a newline. `record` must not contain a newline.
    bool appendLine(std::string_view record);

    const std::string& path() const { return path_; }

  private:
    std::string path_;
    std::mutex mutex_;
    int fd_ = -1;
};

}  // namespace tb

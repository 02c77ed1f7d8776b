#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tunebrook-service/media/MediaPlan.h"

namespace tb::service {

enum class MediaMode {
    synthesize,   // real MP3 and JPEG files made with ffmpeg
    placeholder,  // files of the right size and name, made instantly (unit tests)
};

// Makes the files of the plan that are missing under DIR/audio and DIR/images. A cache
// folder, when given, is shared between data folders: files made for the same seed are
// copied from it instead of being made again.
class MediaGenerator {
  public:
    using Progress = std::function<void(const std::string&)>;

    MediaGenerator(std::string dataDir, std::string cacheDir, MediaMode mode, Progress progress);

    bool ensure(const MediaPlan& plan, uint64_t seed, std::string& error);

    static std::string audioPath(const std::string& dataDir, const std::string& name);
    static std::string imagePath(const std::string& dataDir, const std::string& name);

    // The ffmpeg argument lists, public for tests of their shape.
    static std::vector<std::string> audioCommand(const AudioAsset& asset, const std::string& out);
    static std::vector<std::string> imageCommand(const ImageAsset& asset, const std::string& out);

  private:
    struct Job {
        std::string target;
        std::string cached;
        std::vector<std::string> command;
        long long placeholderBytes = 0;
    };

    std::vector<Job> missingJobs(const MediaPlan& plan, uint64_t seed);
    bool runJobs(std::vector<Job>& jobs, std::string& error);

    std::string dataDir_;
    std::string cacheDir_;
    MediaMode mode_;
    Progress progress_;
};

}  // namespace tb::service

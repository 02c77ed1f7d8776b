#include "tunebrook-service/media/MediaGenerator.h"

#include <cstdio>
#include <filesystem>

#include "tunebrook-service/core/FileUtil.h"
#include "tunebrook-service/core/ProcessRunner.h"
#include "tunebrook-service/core/SeededRandom.h"

namespace tb::service {

namespace fs = std::filesystem;

namespace {

std::string number(double value) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.3f", value);
    return buffer;
}

// One bar of eight notes: the note index comes from the time, its pitch from the steps,
// and each note dies away before the next begins, which hides the jump in phase.
std::string melodyExpression(const AudioAsset& asset) {
    std::string pitch;
    for (size_t i = 0; i < asset.steps.size(); ++i) {
        if (i > 0) {
            pitch += "+";
        }
        pitch += "eq(ld(0)," + std::to_string(i) + ")*" + std::to_string(asset.steps[i]);
    }
    std::string rate = number(asset.notesPerSecond);
    std::string root = number(asset.rootHz);
    return "st(0,mod(floor(t*" + rate + "),8));st(1," + root + "*pow(2,(" + pitch + ")/12));" +
           "0.28*sin(2*PI*ld(1)*t)*pow(1-mod(t*" + rate + ",1),2)+0.1*sin(PI*" + root + "*t)";
}

// Media lives in the data folder, which only its owner may read; ffmpeg and copies make
// files with the process's default mode.
bool keepPrivate(const std::string& path) {
    std::error_code ec;
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write, ec);
    return !ec;
}

bool makePrivateFolder(const std::string& path) {
    std::error_code ec;
    fs::create_directories(path, ec);
    fs::permissions(path, fs::perms::owner_all, ec);
    return !ec;
}

bool copyFile(const std::string& from, const std::string& to) {
    std::error_code ec;
    std::string temp = to + ".part";
    fs::remove(temp, ec);
    fs::create_hard_link(from, temp, ec);
    if (ec) {
        ec.clear();
        fs::copy_file(from, temp, fs::copy_options::overwrite_existing, ec);
    }
    if (ec) {
        return false;
    }
    fs::rename(temp, to, ec);
    return !ec && keepPrivate(to);
}

std::string placeholderContent(long long bytes, const std::string& name) {
    SeededRandom random(SeededRandom::derive(0, name));
    std::string content(static_cast<size_t>(bytes), '\0');
    for (auto& c : content) {
        c = static_cast<char>(random.next() & 0xff);
    }
    return content;
}

}  // namespace

MediaGenerator::MediaGenerator(std::string dataDir,
                               std::string cacheDir,
                               MediaMode mode,
                               Progress progress)
    : dataDir_(std::move(dataDir)),
      cacheDir_(std::move(cacheDir)),
      mode_(mode),
      progress_(std::move(progress)) {}

std::string MediaGenerator::audioPath(const std::string& dataDir, const std::string& name) {
    return dataDir + "/audio/" + name + ".mp3";
}

std::string MediaGenerator::imagePath(const std::string& dataDir, const std::string& name) {
    return dataDir + "/images/" + name + ".jpg";
}

std::vector<std::string> MediaGenerator::audioCommand(const AudioAsset& asset,
                                                      const std::string& out) {
    double bar = 8.0 / asset.notesPerSecond;
    long long barSamples = static_cast<long long>(bar * asset.sampleRate + 0.5);
    std::string seconds = std::to_string(asset.seconds);
    std::string graph =
        "aevalsrc=exprs='" + melodyExpression(asset) + "':s=" + std::to_string(asset.sampleRate) +
        ":d=" + number(bar) + ",aloop=loop=-1:size=" + std::to_string(barSamples) +
        ",atrim=duration=" + seconds +
        ",afade=t=in:d=1,afade=t=out:st=" + std::to_string(asset.seconds - 2) + ":d=2";
    return {"ffmpeg",    "-hide_banner",
            "-loglevel", "error",
            "-nostdin",  "-y",
            "-f",        "lavfi",
            "-i",        graph,
            "-ac",       std::to_string(asset.channels),
            "-c:a",      "libmp3lame",
            "-b:a",      std::to_string(asset.bitrateKbps) + "k",
            "-metadata", "title=" + asset.name,
            out};
}

std::vector<std::string> MediaGenerator::imageCommand(const ImageAsset& asset,
                                                      const std::string& out) {
    std::string source = "gradients=s=" + std::to_string(asset.width) + "x" +
                         std::to_string(asset.height) + ":seed=" + std::to_string(asset.seed) +
                         ":n=4:r=1";
    return {"ffmpeg", "-hide_banner", "-loglevel", "error", "-nostdin", "-y", "-f", "lavfi",
            "-i",     source,         "-frames:v", "1",     "-q:v",     "4",  out};
}

std::vector<MediaGenerator::Job> MediaGenerator::missingJobs(const MediaPlan& plan, uint64_t seed) {
    std::string cacheBase;
    if (!cacheDir_.empty()) {
        cacheBase = cacheDir_ + "/v" + std::to_string(MediaPlan::kVersion) + "-" +
                    std::to_string(seed) + (mode_ == MediaMode::placeholder ? "-placeholder" : "");
    }
    std::vector<Job> jobs;
    auto addAudio = [&](const AudioAsset& asset) {
        std::string target = audioPath(dataDir_, asset.name);
        if (FileUtil::exists(target)) {
            return;
        }
        Job job{target, cacheBase.empty() ? "" : cacheBase + "/" + asset.name + ".mp3",
                audioCommand(asset, target + ".part.mp3"),
                static_cast<long long>(asset.seconds) * 1000};
        jobs.push_back(std::move(job));
    };
    auto addImage = [&](const ImageAsset& asset) {
        std::string target = imagePath(dataDir_, asset.name);
        if (FileUtil::exists(target)) {
            return;
        }
        Job job{target, cacheBase.empty() ? "" : cacheBase + "/" + asset.name + ".jpg",
                imageCommand(asset, target + ".part.jpg"), 2048};
        jobs.push_back(std::move(job));
    };
    addAudio(plan.longAudio);
    for (const auto& asset : plan.shortAudio) {
        addAudio(asset);
    }
    for (const auto& asset : plan.artwork) {
        addImage(asset);
    }
    for (const auto& asset : plan.banners) {
        addImage(asset);
    }
    return jobs;
}

bool MediaGenerator::ensure(const MediaPlan& plan, uint64_t seed, std::string& error) {
    if (!makePrivateFolder(dataDir_ + "/audio") || !makePrivateFolder(dataDir_ + "/images")) {
        error = "cannot create the media folders in " + dataDir_;
        return false;
    }
    auto jobs = missingJobs(plan, seed);
    if (jobs.empty()) {
        return true;
    }
    std::vector<Job> toMake;
    for (auto& job : jobs) {
        if (!job.cached.empty() && FileUtil::exists(job.cached) &&
            copyFile(job.cached, job.target)) {
            continue;
        }
        toMake.push_back(std::move(job));
    }
    if (toMake.empty()) {
        progress_("media: " + std::to_string(jobs.size()) + " files taken from the cache");
        return true;
    }
    return runJobs(toMake, error);
}

bool MediaGenerator::runJobs(std::vector<Job>& jobs, std::string& error) {
    if (mode_ == MediaMode::placeholder) {
        for (const auto& job : jobs) {
            if (!FileUtil::writeAtomically(
                    job.target, placeholderContent(job.placeholderBytes, job.target), 0600)) {
                error = "cannot write " + job.target;
                return false;
            }
        }
        return true;
    }
    if (!ProcessRunner::available("ffmpeg")) {
        error = "ffmpeg is needed to make the demo audio and artwork (apt-get install ffmpeg)";
        return false;
    }
    progress_("media: making " + std::to_string(jobs.size()) + " files with ffmpeg");
    // Two at a time: the long recording goes first so that it overlaps the short ones.
    std::vector<std::vector<std::string>> commands;
    for (const auto& job : jobs) {
        commands.push_back(job.command);
    }
    auto failed = ProcessRunner::runAll(commands, 2);
    if (!failed.empty()) {
        error = "ffmpeg failed to make " + jobs[failed.front()].target;
        return false;
    }
    std::error_code ec;
    for (const auto& job : jobs) {
        std::string made = job.command.back();
        fs::rename(made, job.target, ec);
        if (ec || !keepPrivate(job.target)) {
            error = "cannot move " + made + " into place";
            return false;
        }
        if (!job.cached.empty()) {
            fs::create_directories(fs::path(job.cached).parent_path(), ec);
            copyFile(job.target, job.cached);
        }
    }
    progress_("media: done");
    return true;
}

}  // namespace tb::service

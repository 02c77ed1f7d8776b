#include "tunebrook-service/media/MediaPlan.h"

#include <cstdio>

#include "tunebrook-service/core/SeededRandom.h"

namespace tb::service {

namespace {

constexpr int kShortRecordings = 14;
constexpr int kArtwork = 32;
constexpr int kBanners = 6;
constexpr int kLongSeconds = 1260;

std::string numbered(const char* prefix, int n) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%s-%02d", prefix, n);
    return buffer;
}

std::vector<int> melody(SeededRandom& random) {
    static const std::vector<int> scale = {0, 2, 4, 7, 9, 12, 14, 16};
    std::vector<int> steps;
    for (int i = 0; i < 8; ++i) {
        steps.push_back(random.pick(scale));
    }
    return steps;
}

AudioAsset recording(SeededRandom& random, std::string name, int seconds) {
    static const std::vector<double> roots = {196.0, 220.0, 246.9, 261.6, 293.7, 329.6};
    static const std::vector<double> tempos = {2.0, 2.5, 3.2, 4.0};
    AudioAsset asset;
    asset.name = std::move(name);
    asset.seconds = seconds;
    asset.rootHz = random.pick(roots);
    asset.notesPerSecond = random.pick(tempos);
    asset.steps = melody(random);
    return asset;
}

}  // namespace

MediaPlan MediaPlan::fromSeed(uint64_t seed) {
    SeededRandom random(SeededRandom::derive(seed, "media"));
    MediaPlan plan;
    for (int i = 1; i <= kShortRecordings; ++i) {
        // Spread from 20 to 90 seconds so that lists show a range of lengths.
        int seconds = 20 + static_cast<int>((i - 1) * 70 / (kShortRecordings - 1));
        seconds += static_cast<int>(random.between(-2, 2));
        plan.shortAudio.push_back(
            recording(random, numbered("tone", i), seconds < 20 ? 20 : seconds));
    }
    plan.longAudio = recording(random, "long-01", kLongSeconds);
    plan.longAudio.sampleRate = 22050;
    plan.longAudio.channels = 1;
    plan.longAudio.bitrateKbps = 32;
    for (int i = 1; i <= kArtwork; ++i) {
        plan.artwork.push_back({numbered("art", i), 300, 300, random.next() % 100000});
    }
    for (int i = 1; i <= kBanners; ++i) {
        plan.banners.push_back({numbered("banner", i), 1200, 300, random.next() % 100000});
    }
    return plan;
}

}  // namespace tb::service

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tb::service {

// One synthesised recording: a loop of eight plucked notes over a soft drone.
struct AudioAsset {
    std::string name;  // file name without extension, letters, digits and "-"
    int seconds = 0;
    int sampleRate = 44100;
    int channels = 2;
    int bitrateKbps = 128;
    double rootHz = 220;
    double notesPerSecond = 4;
    std::vector<int> steps;  // eight semitone offsets from the root
};

struct ImageAsset {
    std::string name;
    int width = 300;
    int height = 300;
    uint64_t seed = 0;
};

// The media of the demo catalogue, fixed by the seed. Songs share these recordings (each
// song still gets its own address); a few songs use the one long recording, which is mono
// and at a low bit rate so that it stays cheap to make.
class MediaPlan {
  public:
    static constexpr int kVersion = 1;  // bump when the recordings change for the same seed

    static MediaPlan fromSeed(uint64_t seed);

    std::vector<AudioAsset> shortAudio;
    AudioAsset longAudio;
    std::vector<ImageAsset> artwork;
    std::vector<ImageAsset> banners;
};

}  // namespace tb::service

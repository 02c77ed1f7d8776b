#pragma once

#include <cstdint>

namespace tb::service {

class Database;
class MediaPlan;
struct GeneratedCatalogue;

// Playlists of the uploaders with their categories, and the featured spots. Runs inside the
// catalogue generator's transaction.
class PlaylistGenerator {
  public:
    PlaylistGenerator(Database& db, uint64_t seed, double anchor)
        : db_(db), seed_(seed), anchor_(anchor) {}
    void generate(const MediaPlan& plan, GeneratedCatalogue& made);

  private:
    void makeFeatured(GeneratedCatalogue& made);

    Database& db_;
    uint64_t seed_;
    double anchor_;
};

}  // namespace tb::service

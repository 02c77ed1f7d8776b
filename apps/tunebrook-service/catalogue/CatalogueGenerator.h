#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace tb::service {

class Database;
class MediaPlan;
struct GeneratedCatalogue;

// Fills the catalogue tables of an empty database from a seed: accounts of uploading
// artists, songs and albums across every genre, with some geo-restricted and some taken
// down. Dates are set back from `anchor`, the time of the first start, so that "recent"
// means recent; everything else depends on the seed alone.
class CatalogueGenerator {
  public:
    using Progress = std::function<void(const std::string&)>;

    CatalogueGenerator(Database& db, uint64_t seed, double anchor, Progress progress)
        : db_(db), seed_(seed), anchor_(anchor), progress_(std::move(progress)) {}

    // Runs every step in one transaction; false with a message when the database refused.
    bool generate(const MediaPlan& plan, std::string& error);

  private:
    void makeArtists(const MediaPlan& plan, GeneratedCatalogue& made);
    void makeMusic(const MediaPlan& plan, GeneratedCatalogue& made);
    void recordMedia(const MediaPlan& plan);

    Database& db_;
    uint64_t seed_;
    double anchor_;
    Progress progress_;
};

}  // namespace tb::service

#pragma once

#include <cstdint>

namespace tb::service {

class Database;
struct GeneratedCatalogue;

// The uploaders' follows, reposts, favourites and highlights, which fill the profile lists
// and the feed of anyone who follows them.
class SocialGenerator {
  public:
    SocialGenerator(Database& db, uint64_t seed, double anchor)
        : db_(db), seed_(seed), anchor_(anchor) {}
    void generate(const GeneratedCatalogue& made);

  private:
    Database& db_;
    uint64_t seed_;
    double anchor_;
};

}  // namespace tb::service

#pragma once

#include <string>

namespace tb::service {

class SeededRandom;

// Made-up names for the demo catalogue, drawn from small word lists.
class NameBank {
  public:
    static std::string artistName(SeededRandom& random);
    static std::string songTitle(SeededRandom& random);
    static std::string albumTitle(SeededRandom& random);
    static std::string playlistTitle(SeededRandom& random, const std::string& tag);
    static std::string city(SeededRandom& random);
    static std::string label(SeededRandom& random);
    static std::string sentence(SeededRandom& random);
    static std::string comment(SeededRandom& random);
};

}  // namespace tb::service

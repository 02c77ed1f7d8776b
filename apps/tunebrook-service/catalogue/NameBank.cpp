#include "tunebrook-service/catalogue/NameBank.h"

#include <vector>

#include "tunebrook-service/core/SeededRandom.h"

namespace tb::service {

namespace {

const std::vector<std::string> kAdjectives = {
    "Velvet",  "Golden", "Midnight", "Electric", "Quiet",  "Neon",   "Silver", "Wild",
    "Crimson", "Lucky",  "Hollow",   "Bright",   "Lunar",  "Copper", "Young",  "Blue",
    "Savage",  "Sunny",  "Frozen",   "Royal",    "Cosmic", "Rusty",  "Honey",  "Static"};
const std::vector<std::string> kNouns = {
    "Harbor", "Echo",    "Tide",   "Signal", "River",  "Garden", "Comet",   "Parade",
    "Static", "Lantern", "Fox",    "Empire", "Season", "Mirage", "Circuit", "Orchard",
    "Avenue", "Prophet", "Canyon", "Rhythm", "Wave",   "Ember",  "Pilot",   "Atlas"};
const std::vector<std::string> kFirstNames = {"Amara", "Kofi",   "Lena", "Mateo", "Nia",  "Oscar",
                                              "Priya", "Rafael", "Sade", "Tomas", "Yara", "Zion",
                                              "Imani", "Jonah",  "Keke", "Luis",  "Mira", "Nova"};
const std::vector<std::string> kPrefixes = {"DJ", "Lil", "MC", "Big", "Young"};
const std::vector<std::string> kTitleWords = {
    "Love",     "Night",   "Fire",  "Dreams", "Gold",  "Rain",   "Heart",    "Summer",
    "Money",    "Shadows", "Dance", "Home",   "Road",  "Light",  "Stars",    "City",
    "Forever",  "Tonight", "Sky",   "Ocean",  "Vibes", "Motion", "Spirit",   "Fever",
    "Paradise", "Sunday",  "Crown", "Rewind", "Mercy", "Glow",   "Pressure", "Wonder"};
const std::vector<std::string> kTitleStarts = {
    "",      "",       "",         "No More ", "All the ",    "Back to ",
    "Only ", "Sweet ", "Lost in ", "Chasing ", "Hold On to ", "The "};
const std::vector<std::string> kCities = {"Lagos",   "Atlanta", "Kingston", "London",
                                          "Houston", "Accra",   "Toronto",  "Miami",
                                          "Chicago", "Nairobi", "Bogota",   "Memphis"};
const std::vector<std::string> kLabels = {
    "Brookline Records", "Night Shift Music",       "Independent",   "Copperline",
    "Harbor Sound",      "Loud Room Entertainment", "Self-released", "Blue Door"};
const std::vector<std::string> kPlaylistWords = {"Essentials", "Mix",   "Rotation", "Hits",
                                                 "Vibes",      "Picks", "Session",  "Heat"};
const std::vector<std::string> kSentences = {"Recorded live in one take.",
                                             "Straight from the studio to your speakers.",
                                             "A little something for the late nights.",
                                             "Produced, mixed and mastered at home.",
                                             "The one everybody asked for.",
                                             "Turn it up.",
                                             "Dedicated to the city that raised me.",
                                             "Made for long drives and open windows."};
const std::vector<std::string> kComments = {
    "This one is on repeat",  "Fire!",
    "Been waiting for this",  "Who else is here from the feed?",
    "Best track of the year", "That beat switch though"};

}  // namespace

std::string NameBank::artistName(SeededRandom& random) {
    switch (random.below(4)) {
        case 0:
            return random.pick(kAdjectives) + " " + random.pick(kNouns);
        case 1:
            return random.pick(kFirstNames) + " " + random.pick(kNouns);
        case 2:
            return random.pick(kPrefixes) + " " + random.pick(kNouns);
        default:
            return random.pick(kFirstNames) + " " + random.pick(kAdjectives);
    }
}

std::string NameBank::songTitle(SeededRandom& random) {
    std::string title = random.pick(kTitleStarts) + random.pick(kTitleWords);
    if (random.percent(35)) {
        title += " " + random.pick(kTitleWords);
    }
    if (random.percent(8)) {
        title += " (Remix)";
    }
    return title;
}

std::string NameBank::albumTitle(SeededRandom& random) {
    if (random.percent(30)) {
        return random.pick(kAdjectives) + " " + random.pick(kNouns);
    }
    return random.pick(kTitleWords) + " " + random.pick(kNouns);
}

std::string NameBank::playlistTitle(SeededRandom& random, const std::string& tag) {
    return tag + " " + random.pick(kPlaylistWords);
}

std::string NameBank::city(SeededRandom& random) {
    return random.pick(kCities);
}

std::string NameBank::label(SeededRandom& random) {
    return random.pick(kLabels);
}

std::string NameBank::sentence(SeededRandom& random) {
    return random.pick(kSentences);
}

std::string NameBank::comment(SeededRandom& random) {
    return random.pick(kComments);
}

}  // namespace tb::service

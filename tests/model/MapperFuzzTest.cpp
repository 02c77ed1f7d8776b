// The fixture answers, mutated node by node and then at random, fed to every mapper. Whatever
// arrives, a mapper returns a record or nothing: it never throws or crashes, and what it
// returns keeps the promises its callers build on (an id on every record, tracks numbered
// upwards from 1, the id lists in step with the track lists).

#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Fixtures.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "model/TBFeaturedSpot.h"
#include "model/TBNotification.h"
#include "platform/JSON.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

using json = nlohmann::json;

// Values no honest answer holds where they are put. Built in code, so they include what the
// parser would refuse: invalid UTF-8, NaN, infinities and nesting deeper than its limit.
std::vector<json> hostileValues() {
    json deep = json::array();
    for (int i = 0; i < 600; ++i) {
        deep = json::array({std::move(deep)});
    }
    return {
        nullptr,
        true,
        false,
        0,
        -1,
        std::numeric_limits<std::int64_t>::max(),
        std::numeric_limits<std::int64_t>::min(),
        std::numeric_limits<std::uint64_t>::max(),
        1e308,
        -1e308,
        0.5,
        std::numeric_limits<double>::quiet_NaN(),
        std::numeric_limits<double>::infinity(),
        "",
        " ",
        "yes",
        "tastemaker",
        "playlist",
        "album",
        "song",
        "artist",
        "comment",
        "9999999999999999999999",
        "-9223372036854775809",
        "\xff\xfe\xc3",
        "\"\\/\"",
        "../../etc/passwd",
        std::string("a\0b", 3),
        json::array(),
        json::object(),
        json::array({nullptr, 1, "x", json::object()}),
        json{{"id", "nested"}, {"type", "album"}, {"tracks", json::array({json::object()})}},
        std::move(deep),
    };
}

std::size_t depthOf(const json::json_pointer& pointer) {
    std::size_t depth = 0;
    for (auto at = pointer; !at.empty(); at = at.parent_pointer()) {
        ++depth;
    }
    return depth;
}

// Every place in `root` that holds a value, the root included, down to a depth well below
// the hostile nesting (which is then mutated as a whole).
std::vector<json::json_pointer> pointersOf(const json& root) {
    constexpr std::size_t kDeepest = 12;
    std::vector<json::json_pointer> pointers;
    std::function<void(const json&, const json::json_pointer&)> walk =
        [&](const json& node, const json::json_pointer& at) {
            pointers.push_back(at);
            if (depthOf(at) >= kDeepest) {
                return;
            }
            if (node.is_object()) {
                for (const auto& [key, value] : node.items()) {
                    walk(value, at / key);
                }
            } else if (node.is_array()) {
                for (std::size_t i = 0; i < node.size(); ++i) {
                    walk(node[i], at / i);
                }
            }
        };
    walk(root, json::json_pointer());
    return pointers;
}

void expectSoundItem(const ItemPtr& item, bool top = true) {
    if (!item) {
        return;
    }
    ASSERT_TRUE(item->itemID.has_value());
    EXPECT_FALSE(item->itemID->empty());
    EXPECT_EQ(item->hasTracks, !item->tracks.empty());
    EXPECT_EQ(item->hasItems, !item->items.empty());
    std::int64_t lastTrackNumber = 0;
    for (const ItemPtr& track : item->tracks) {
        ASSERT_TRUE(track);
        EXPECT_GT(track->trackNumber, lastTrackNumber);
        lastTrackNumber = track->trackNumber;
        EXPECT_EQ(track->parentID, item->itemID);
        expectSoundItem(track, false);
    }
    for (const ItemPtr& entry : item->items) {
        ASSERT_TRUE(entry);
        EXPECT_EQ(entry->parentID, item->itemID);
        expectSoundItem(entry, false);
    }
    if (top) {
        // The derived properties read whatever the mapper left.
        (void)item->itemType();
        (void)item->isTakenDown();
        (void)item->typeForHighlightingAPI();
        (void)item->shareURL("https://tunebrook.test");
        (void)item->availableItems();
        (void)item->availableTracks();
        (void)item->localFileURL("/docs");
    }
}

void expectSoundArtist(const ArtistPtr& artist) {
    if (artist) {
        // The id's string value, "" when the answer has none: never nil.
        ASSERT_TRUE(artist->artistId.has_value());
        EXPECT_GE(artist->pinnedCount, 0);
    }
}

// Every mapper on `answer`, and on "results" or each of its elements.
void mapEverywhere(const json& answer) {
    std::vector<JSON> inputs = {JSON(json(answer))};
    const JSON whole = inputs.front();
    for (const JSON& element : whole["results"].arrayValue()) {
        inputs.push_back(element);
    }
    if (whole["results"].isDictionary()) {
        inputs.push_back(whole["results"]);
    }
    for (const JSON& input : inputs) {
        expectSoundItem(Item::parseItemFrom(input, false));
        expectSoundItem(Item::parseItemFrom(input, true));
        expectSoundItem(Item::parsePlaylistFrom(input));
        expectSoundArtist(Artist::parseFrom(input));
        const TBFeaturedSpot spot = TBFeaturedSpot::fromJSON(input);
        expectSoundItem(spot.item);
        expectSoundArtist(spot.artist);
        (void)spot.prettyType();
        (void)spot.hash();
        if (const auto notification = TBNotification::fromJSON(input)) {
            expectSoundArtist(notification->actor);
            expectSoundItem(notification->object);
            expectSoundItem(notification->target);
        }
    }
}

const char* const kFixtures[] = {"song.json",   "album.json",    "playlist.json",
                                 "artist.json", "featured.json", "notifications.json"};

TEST(MapperFuzzTest, EveryNodeOfEveryFixtureReplacedByEveryHostileValue) {
    const std::vector<json> values = hostileValues();
    for (const char* name : kFixtures) {
        const json original = test::fixture(name).raw();
        ASSERT_TRUE(original.is_object()) << name;
        for (const auto& pointer : pointersOf(original)) {
            for (const json& value : values) {
                json mutated = original;
                mutated[pointer] = value;
                SCOPED_TRACE(std::string(name) + " at " + pointer.to_string());
                mapEverywhere(mutated);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// One random change: a value replaced, a member removed, a node wrapped in an array or in an
// object under a key the mappers read, or a node copied over another one.
void mutateOnce(json& document, std::mt19937& random, const std::vector<json>& values) {
    const auto pointers = pointersOf(document);
    const auto& at = pointers[random() % pointers.size()];
    switch (random() % 5) {
        case 0:
            document[at] = values[random() % values.size()];
            break;
        case 1:
            if (!at.empty()) {
                json& parent = document[at.parent_pointer()];
                if (parent.is_object()) {
                    parent.erase(at.back());
                } else if (parent.is_array() && !parent.empty()) {
                    parent.erase(parent.size() - 1);
                }
            }
            break;
        case 2:
            document[at] = json::array({document[at]});
            break;
        case 3: {
            static const char* const kKeys[] = {"tracks",  "ref",    "uploader", "artist",
                                                "results", "object", "stats",    "extra_context"};
            document[at] = json{{kKeys[random() % std::size(kKeys)], document[at]}};
            break;
        }
        default:
            document[at] = json(document[pointers[random() % pointers.size()]]);
            break;
    }
}

TEST(MapperFuzzTest, RandomlyMutatedFixturesNeverBreakAMapper) {
    const std::vector<json> values = hostileValues();
    std::mt19937 random(20240611);  // fixed, so that a failure can be run again
    for (const char* name : kFixtures) {
        const json original = test::fixture(name).raw();
        for (int round = 0; round < 150; ++round) {
            json mutated = original;
            const int changes = 1 + static_cast<int>(random() % 6);
            for (int change = 0; change < changes; ++change) {
                mutateOnce(mutated, random, values);
            }
            SCOPED_TRACE(std::string(name) + " round " + std::to_string(round));
            mapEverywhere(mutated);
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

}  // namespace
}  // namespace tb

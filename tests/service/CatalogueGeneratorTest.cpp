#include "support/TempDir.h"
#include "tunebrook-service/catalogue/CatalogueGenerator.h"
#include "tunebrook-service/catalogue/Vocabulary.h"
#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/Statement.h"
#include "tunebrook-service/media/MediaPlan.h"
#include "tunebrook-service/state/Schema.h"

#include <gtest/gtest.h>

namespace tb::service {
namespace {

constexpr double kAnchor = 1790000000.0;

class CatalogueGeneratorTest : public ::testing::Test {
  protected:
    std::unique_ptr<Database> generate(const std::string& name, uint64_t seed) {
        std::string error;
        auto db = Database::open(dir_.file(name), error);
        EXPECT_TRUE(db && Schema::create(*db, error)) << error;
        CatalogueGenerator generator(*db, seed, kAnchor, [](const std::string&) {});
        EXPECT_TRUE(generator.generate(MediaPlan::fromSeed(seed), error)) << error;
        return db;
    }

    // Every catalogue row, in a fixed order, as text.
    static std::string dump(Database& db) {
        std::string out;
        for (const char* table :
             {"accounts", "music", "playlists", "playlist_tracks", "playlist_tags", "tags",
              "featured", "follows", "reposts", "favorites", "pinned", "media"}) {
            auto statement =
                db.prepare(std::string("SELECT * FROM ") + table + " ORDER BY 1, 2, 3");
            while (statement.step()) {
                out += table;
                for (int c = 0; c < statement.columns(); ++c) {
                    out += "|" + statement.text(c);
                }
                out += "\n";
            }
        }
        return out;
    }

    static int64_t count(Database& db, const std::string& sql) {
        auto statement = db.prepare(sql);
        return statement.step() ? statement.int64(0) : -1;
    }
    static int64_t songs(Database& db, const std::string& where) {
        return count(db, "SELECT COUNT(*) FROM music WHERE type = 'song' AND " + where);
    }

    test::TempDir dir_;
};

TEST_F(CatalogueGeneratorTest, TheSameSeedMakesTheSameCatalogueWithTheSizeAndVarietyClientsNeed) {
    auto first = generate("a.sqlite", 7);
    auto second = generate("b.sqlite", 7);
    auto other = generate("c.sqlite", 8);
    std::string dumped = dump(*first);
    EXPECT_GT(dumped.size(), 10000u);
    EXPECT_EQ(dumped, dump(*second));
    EXPECT_NE(dumped, dump(*other));

    auto db = generate("catalogue.sqlite", 1);
    EXPECT_GE(count(*db, "SELECT COUNT(*) FROM accounts WHERE uploader = 1"), 30);
    EXPECT_GE(count(*db, "SELECT COUNT(*) FROM music WHERE type = 'song'"), 300);
    EXPECT_GE(count(*db, "SELECT COUNT(*) FROM music WHERE type = 'album'"), 30);
    EXPECT_GE(count(*db, "SELECT COUNT(*) FROM playlists"), 20);
    EXPECT_GT(count(*db, "SELECT COUNT(*) FROM accounts WHERE verified = 'yes'"), 0);
    EXPECT_GT(count(*db, "SELECT COUNT(*) FROM accounts WHERE verified = 'tastemaker'"), 0);
    EXPECT_GT(count(*db, "SELECT COUNT(*) FROM music WHERE geo_restricted = 1"), 0);
    for (const std::string status : {"suspended", "takedown", "unplayable"}) {
        EXPECT_GT(count(*db, "SELECT COUNT(*) FROM music WHERE status = '" + status + "'"), 0)
            << status;
    }
    for (const auto& genre : Vocabulary::genres()) {
        EXPECT_GT(songs(*db, "status = 'active' AND genre = '" + genre + "'"), 0) << genre;
    }
    EXPECT_GE(songs(*db, "duration > 1200"), 3);
    EXPECT_EQ(songs(*db, "duration <= 1200 AND (duration < 18 OR duration > 92)"), 0);
    // Every album's tracks are songs of the album's uploader, numbered from 1.
    EXPECT_EQ(count(*db,
                    "SELECT COUNT(*) FROM music t JOIN music a ON a.id = t.album_id "
                    "WHERE a.type != 'album' OR t.uploader_id != a.uploader_id"),
              0);
    EXPECT_EQ(count(*db, "SELECT COUNT(*) FROM music WHERE album_id != 0 AND track_number < 1"), 0);
}

}  // namespace
}  // namespace tb::service

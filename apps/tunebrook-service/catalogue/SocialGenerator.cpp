#include "tunebrook-service/catalogue/SocialGenerator.h"

#include <vector>

#include "tunebrook-service/catalogue/GeneratedCatalogue.h"
#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/SeededRandom.h"
#include "tunebrook-service/core/Statement.h"

namespace tb::service {

namespace {

constexpr double kDay = 86400.0;

}  // namespace

void SocialGenerator::generate(const GeneratedCatalogue& made) {
    SeededRandom random(SeededRandom::derive(seed_, "social"));
    std::vector<const GeneratedCatalogue::Music*> listed;
    for (const auto& music : made.music) {
        if (music.albumId == 0 && music.active) {
            listed.push_back(&music);
        }
    }
    for (const auto& artist : made.artists) {
        int64_t follows = random.between(3, 8);
        for (int64_t i = 0; i < follows; ++i) {
            const auto& other = random.pick(made.artists);
            if (other.id != artist.id) {
                db_.prepare(
                       "INSERT OR IGNORE INTO follows(account_id, artist_id, created) "
                       "VALUES(?, ?, ?)")
                    .with(artist.id, other.id,
                          anchor_ - static_cast<double>(random.between(1, 600)) * kDay)
                    .run();
            }
        }
        // Reposts are recent, so that followers' feeds show some near the top.
        int64_t reposts = random.between(1, 4);
        for (int64_t i = 0; i < reposts; ++i) {
            const auto* music = random.pick(listed);
            if (music->uploaderId != artist.id) {
                db_.prepare(
                       "INSERT OR IGNORE INTO reposts(account_id, music_id, created) "
                       "VALUES(?, ?, ?)")
                    .with(artist.id, music->id,
                          anchor_ - static_cast<double>(random.between(0, 20 * 86400)))
                    .run();
            }
        }
        int64_t favorites = random.between(3, 10);
        for (int64_t i = 0; i < favorites; ++i) {
            db_.prepare(
                   "INSERT OR IGNORE INTO favorites(account_id, kind, item_id, created) "
                   "VALUES(?, 'music', ?, ?)")
                .with(artist.id, random.pick(listed)->id,
                      anchor_ - static_cast<double>(random.between(0, 300)) * kDay)
                .run();
        }
        const auto& playlist = random.pick(made.playlists);
        if (!playlist.isPrivate) {
            db_.prepare(
                   "INSERT OR IGNORE INTO favorites(account_id, kind, item_id, created) "
                   "VALUES(?, 'playlist', ?, ?)")
                .with(artist.id, playlist.id, anchor_ - 3 * kDay)
                .run();
        }
        if (artist.verified.empty()) {
            continue;
        }
        int64_t position = 0;
        for (const auto* music : listed) {
            if (music->uploaderId == artist.id && position < 2) {
                db_.prepare(
                       "INSERT INTO pinned(account_id, kind, item_id, position) "
                       "VALUES(?, ?, ?, ?)")
                    .with(artist.id, music->type, music->id, position++)
                    .run();
            }
        }
    }
}

}  // namespace tb::service

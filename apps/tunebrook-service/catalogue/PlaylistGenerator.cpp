#include "tunebrook-service/catalogue/PlaylistGenerator.h"

#include <algorithm>
#include <map>
#include <set>

#include "tunebrook-service/catalogue/GeneratedCatalogue.h"
#include "tunebrook-service/catalogue/NameBank.h"
#include "tunebrook-service/catalogue/Slug.h"
#include "tunebrook-service/catalogue/Vocabulary.h"
#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/SeededRandom.h"
#include "tunebrook-service/core/Statement.h"
#include "tunebrook-service/media/MediaPlan.h"

namespace tb::service {

namespace {

constexpr int kPlaylists = 24;
constexpr int kPrivatePlaylists = 2;  // the last ones; only their owners see them
constexpr int64_t kFirstPlaylistId = 70001;
constexpr double kDay = 86400.0;

}  // namespace

void PlaylistGenerator::generate(const MediaPlan& plan, GeneratedCatalogue& made) {
    SeededRandom random(SeededRandom::derive(seed_, "playlists"));
    const auto& tags = Vocabulary::tags();
    int64_t position = 0;
    for (const auto& tag : tags) {
        db_.prepare("INSERT INTO tags(tag, position) VALUES(?, ?)").with(tag, position++).run();
    }
    std::vector<int64_t> songs;
    for (const auto& music : made.music) {
        if (music.type == "song") {
            songs.push_back(music.id);
        }
    }
    std::map<int64_t, std::set<std::string>> slugsByOwner;
    for (int p = 0; p < kPlaylists; ++p) {
        const auto& owner = made.artists[static_cast<size_t>((p * 5) % made.artists.size())];
        const std::string& tag = tags[static_cast<size_t>(p) % tags.size()];
        std::string title = NameBank::playlistTitle(random, tag);
        std::string slug = Slug::from(title);
        for (int n = 2; !slugsByOwner[owner.id].insert(slug).second; ++n) {
            slug = Slug::from(title) + "-" + std::to_string(n);
        }
        int64_t id = kFirstPlaylistId + p;
        bool isPrivate = p >= kPlaylists - kPrivatePlaylists;
        double created = anchor_ - static_cast<double>(random.between(30, 900)) * kDay;
        double updated = created + static_cast<double>(random.between(0, 29)) * kDay;
        db_.prepare(
               "INSERT INTO playlists(id, slug, owner_id, title, genre, description, "
               "private, created, updated, image, banner, plays, favorites) "
               "VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
            .with(id, slug, owner.id, title, owner.genre, NameBank::sentence(random),
                  isPrivate ? 1 : 0, created, updated, random.pick(plan.artwork).name,
                  random.percent(50) ? random.pick(plan.banners).name : std::string(),
                  random.between(100, 90000), random.between(0, 4000))
            .run();
        db_.prepare("INSERT INTO playlist_tags(playlist_id, tag) VALUES(?, ?)").with(id, tag).run();
        // "Trending" also holds every fourth playlist, so that category has a few.
        if (p % 4 == 1 && tag != tags.front()) {
            db_.prepare("INSERT INTO playlist_tags(playlist_id, tag) VALUES(?, ?)")
                .with(id, tags.front())
                .run();
        }
        std::vector<int64_t> picks = songs;
        int64_t count = random.between(6, 25);
        for (int64_t i = 0; i < count && !picks.empty(); ++i) {
            size_t index = static_cast<size_t>(random.below(picks.size()));
            db_.prepare(
                   "INSERT INTO playlist_tracks(playlist_id, position, music_id) "
                   "VALUES(?, ?, ?)")
                .with(id, i, picks[index])
                .run();
            picks.erase(picks.begin() + static_cast<std::ptrdiff_t>(index));
        }
        made.playlists.push_back({id, owner.id, isPrivate});
    }
    makeFeatured(made);
}

void PlaylistGenerator::makeFeatured(GeneratedCatalogue& made) {
    SeededRandom random(SeededRandom::derive(seed_, "featured"));
    auto pickMusic = [&](const std::string& type, bool geoRestricted) -> int64_t {
        std::vector<int64_t> candidates;
        for (const auto& music : made.music) {
            if (music.type == type && music.active && music.albumId == 0 &&
                music.geoRestricted == geoRestricted) {
                candidates.push_back(music.id);
            }
        }
        return candidates.empty() ? 0 : random.pick(candidates);
    };
    struct Spot {
        const char* label;
        const char* kind;
        int64_t id;
    };
    std::vector<Spot> spots = {
        {"Premiere", "song", pickMusic("song", false)},
        {"New Release", "album", pickMusic("album", false)},
        {"Exclusive", "song", pickMusic("song", true)},
        {"Featured Playlist", "playlist", made.playlists.front().id},
        {"Artist Spotlight", "artist", random.pick(made.artists).id},
        {"Hot Right Now", "song", pickMusic("song", false)},
    };
    int64_t position = 0;
    for (const auto& spot : spots) {
        if (spot.id == 0) {
            continue;
        }
        db_.prepare("INSERT INTO featured(position, label, kind, ref_id) VALUES(?, ?, ?, ?)")
            .with(position++, spot.label, spot.kind, spot.id)
            .run();
    }
}

}  // namespace tb::service

#include "tunebrook-service/catalogue/CatalogueGenerator.h"

#include <map>
#include <set>

#include "tunebrook-service/catalogue/GeneratedCatalogue.h"
#include "tunebrook-service/catalogue/NameBank.h"
#include "tunebrook-service/catalogue/PlaylistGenerator.h"
#include "tunebrook-service/catalogue/Slug.h"
#include "tunebrook-service/catalogue/SocialGenerator.h"
#include "tunebrook-service/catalogue/Vocabulary.h"
#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/SeededRandom.h"
#include "tunebrook-service/core/Statement.h"
#include "tunebrook-service/media/MediaPlan.h"
#include "tunebrook-service/state/MetaStore.h"
#include "tunebrook-service/state/MusicRow.h"

namespace tb::service {

namespace {

constexpr int kArtists = 36;
constexpr int kAlbums = 32;
constexpr int kSingles = 140;
constexpr int64_t kFirstArtistId = 101;
constexpr int64_t kFirstMusicId = 10001;
constexpr double kDay = 86400.0;

const char* const kTakenDown[] = {"suspended", "takedown", "unplayable"};

MusicRow newDraft(const std::string& type) {
    MusicRow row;
    row.type = type;
    row.status = "active";
    return row;
}

// Play counts that shrink from the whole life of a song down to one day, with a few hits
// far above the rest.
void drawPlays(SeededRandom& random, MusicRow& draft) {
    int64_t total = random.between(500, 40000);
    if (random.percent(10)) {
        total *= random.between(10, 60);
    }
    draft.playsTotal = total;
    draft.playsYearly = total * random.between(30, 90) / 100;
    draft.playsMonthly = draft.playsYearly * random.between(10, 40) / 100;
    draft.playsWeekly = draft.playsMonthly * random.between(15, 40) / 100;
    draft.playsDaily = draft.playsWeekly * random.between(0, 30) / 100;
    draft.favorites = total * random.between(1, 8) / 100;
    draft.reposts = draft.favorites * random.between(5, 30) / 100;
    draft.playlisted = random.between(0, 200);
}

void insert(Database& db, int64_t id, const MusicRow& d) {
    db.prepare(
          "INSERT INTO music(id, type, slug, uploader_id, title, artist, featuring, producer, "
          "genre, description, released, duration, status, geo_restricted, stream_only, "
          "video_ad, album_id, track_number, audio, image, plays_daily, plays_weekly, "
          "plays_monthly, plays_yearly, plays_total, favorites, reposts, playlisted, buy_link) "
          "VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
          "?, ?)")
        .with(id, d.type, d.slug, d.uploader.id, d.title, d.artist, d.featuring, d.producer,
              d.genre, d.description, d.released, d.duration, d.status, d.geoRestricted ? 1 : 0,
              d.streamOnly ? 1 : 0, d.videoAd ? 1 : 0, d.albumId, d.trackNumber, d.audio, d.image,
              d.playsDaily, d.playsWeekly, d.playsMonthly, d.playsYearly, d.playsTotal, d.favorites,
              d.reposts, d.playlisted, d.buyLink)
        .run();
}

std::string uniqueSlug(const std::string& title, std::set<std::string>& used) {
    std::string base = Slug::from(title);
    std::string slug = base;
    for (int n = 2; !used.insert(slug).second; ++n) {
        slug = base + "-" + std::to_string(n);
    }
    return slug;
}

}  // namespace

bool CatalogueGenerator::generate(const MediaPlan& plan, std::string& error) {
    Transaction transaction(db_);
    GeneratedCatalogue made;
    makeArtists(plan, made);
    makeMusic(plan, made);
    PlaylistGenerator(db_, seed_, anchor_).generate(plan, made);
    SocialGenerator(db_, seed_, anchor_).generate(made);
    recordMedia(plan);
    // The marker goes in the same transaction, so that a start killed half way makes the
    // whole catalogue again rather than keeping part of one.
    MetaStore meta(db_);
    meta.set("catalogue_anchor", std::to_string(static_cast<int64_t>(anchor_)));
    meta.set("catalogue_seed", std::to_string(seed_));
    if (!transaction.commit()) {
        error = "the catalogue could not be written";
        return false;
    }
    progress_("catalogue: " + std::to_string(made.artists.size()) + " artists, " +
              std::to_string(made.music.size()) + " songs and albums, " +
              std::to_string(made.playlists.size()) + " playlists");
    return true;
}

void CatalogueGenerator::makeArtists(const MediaPlan& plan, GeneratedCatalogue& made) {
    SeededRandom random(SeededRandom::derive(seed_, "artists"));
    const auto& genres = Vocabulary::genres();
    std::set<std::string> names;
    std::set<std::string> slugs;
    for (int i = 0; i < kArtists; ++i) {
        std::string name = NameBank::artistName(random);
        for (int attempt = 0; names.count(name) && attempt < 50; ++attempt) {
            name = NameBank::artistName(random);
        }
        if (!names.insert(name).second) {
            name += " " + std::to_string(i);
            names.insert(name);
        }
        GeneratedCatalogue::Artist artist;
        artist.id = kFirstArtistId + i;
        artist.name = name;
        artist.genre = i < static_cast<int>(genres.size()) ? genres[static_cast<size_t>(i)]
                                                           : random.pick(genres);
        artist.verified = i % 5 == 0 ? "yes" : (i % 7 == 3 ? "tastemaker" : "");
        std::string slug = uniqueSlug(name, slugs);
        std::string handle = slug;
        for (auto& c : handle) {
            c = c == '-' ? '_' : c;
        }
        bool social = random.percent(70);
        db_.prepare(
               "INSERT INTO accounts(id, slug, name, verified, genre, bio, hometown, label, "
               "website, twitter, facebook, instagram, youtube, image, banner, created, "
               "uploader, base_followers) "
               "VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, 1, ?)")
            .with(artist.id, slug, name, artist.verified, artist.genre, NameBank::sentence(random),
                  NameBank::city(random), NameBank::label(random),
                  social ? "https://" + slug + ".example.com" : std::string(),
                  social ? handle : std::string(),
                  social ? "https://facebook.example.com/" + slug : std::string(),
                  random.percent(50) ? handle : std::string(),
                  random.percent(30) ? "https://video.example.com/" + slug : std::string(),
                  random.pick(plan.artwork).name,
                  random.percent(60) ? random.pick(plan.banners).name : std::string(),
                  anchor_ - static_cast<double>(random.between(400, 2500)) * kDay,
                  random.between(40, 250000))
            .run();
        made.artists.push_back(std::move(artist));
    }
    progress_("catalogue: artists made");
}

void CatalogueGenerator::makeMusic(const MediaPlan& plan, GeneratedCatalogue& made) {
    SeededRandom random(SeededRandom::derive(seed_, "music"));
    const auto& genres = Vocabulary::genres();
    std::map<int64_t, std::set<std::string>> slugsByUploader;
    int64_t nextId = kFirstMusicId;
    int songCount = 0;

    // Every fifty-third song is one of the long ones; others pick a short recording.
    auto fillSong = [&](MusicRow& draft) {
        const AudioAsset& audio =
            songCount % 53 == 17 ? plan.longAudio : random.pick(plan.shortAudio);
        draft.audio = audio.name;
        draft.duration = audio.seconds;
        if (songCount % 37 == 11) {
            draft.status = kTakenDown[(songCount / 37) % 3];
        }
        draft.geoRestricted = songCount % 41 == 5;
        draft.streamOnly = random.percent(10);
        draft.videoAd = random.percent(5);
        if (random.percent(20)) {
            draft.featuring = random.pick(made.artists).name;
            if (random.percent(25)) {
                draft.featuring += " and " + random.pick(made.artists).name;
            }
        }
        if (random.percent(30)) {
            draft.producer = random.pick(made.artists).name;
        }
        drawPlays(random, draft);
        ++songCount;
    };
    auto record = [&](int64_t id, const MusicRow& draft) {
        insert(db_, id, draft);
        made.music.push_back({id, draft.uploader.id, draft.type, draft.albumId,
                              draft.status == "active", draft.geoRestricted});
    };

    for (int a = 0; a < kAlbums; ++a) {
        const auto& uploader = made.artists[static_cast<size_t>((a * 7) % kArtists)];
        MusicRow album = newDraft("album");
        album.uploader.id = uploader.id;
        album.artist = uploader.name;
        album.title = NameBank::albumTitle(random);
        album.slug = uniqueSlug(album.title, slugsByUploader[uploader.id]);
        album.genre = uploader.genre;
        album.description = NameBank::sentence(random);
        album.released = anchor_ - static_cast<double>(random.between(0, 1100)) * kDay -
                         static_cast<double>(random.between(0, 86399));
        album.image = random.pick(plan.artwork).name;
        album.buyLink = random.percent(40) ? "https://store.example.com/album/" + album.slug : "";
        drawPlays(random, album);
        int64_t albumId = nextId++;
        int64_t tracks = random.between(4, 10);
        std::set<std::string> trackSlugs;
        std::vector<MusicRow> drafts;
        for (int64_t t = 1; t <= tracks; ++t) {
            MusicRow song = newDraft("song");
            song.uploader.id = uploader.id;
            song.artist = uploader.name;
            song.genre = random.percent(85) ? album.genre : random.pick(genres);
            song.title = NameBank::songTitle(random);
            song.slug = uniqueSlug(song.title, slugsByUploader[uploader.id]);
            song.released = album.released;
            song.albumId = albumId;
            song.trackNumber = t;
            song.image = album.image;
            fillSong(song);
            album.duration += song.duration;
            drafts.push_back(std::move(song));
        }
        record(albumId, album);
        for (const auto& song : drafts) {
            record(nextId++, song);
        }
    }
    for (int i = 0; i < kSingles; ++i) {
        const auto& uploader = i < 3 * kArtists ? made.artists[static_cast<size_t>(i % kArtists)]
                                                : random.pick(made.artists);
        MusicRow song = newDraft("song");
        song.uploader.id = uploader.id;
        song.artist = uploader.name;
        song.title = NameBank::songTitle(random);
        song.slug = uniqueSlug(song.title, slugsByUploader[uploader.id]);
        // The first two rounds go through every genre, so that each one has songs.
        song.genre = i < 2 * static_cast<int>(genres.size())
                         ? genres[static_cast<size_t>(i) % genres.size()]
                         : (random.percent(80) ? uploader.genre : random.pick(genres));
        song.description = NameBank::sentence(random);
        song.released = anchor_ - static_cast<double>(random.between(0, 1100)) * kDay -
                        static_cast<double>(random.between(0, 86399));
        song.image = random.pick(plan.artwork).name;
        song.buyLink = random.percent(15) ? "https://store.example.com/song/" + song.slug : "";
        fillSong(song);
        record(nextId++, song);
    }
    progress_("catalogue: " + std::to_string(songCount) + " songs made");
}

void CatalogueGenerator::recordMedia(const MediaPlan& plan) {
    auto add = [&](const std::string& name, const char* kind, int duration) {
        db_.prepare("INSERT OR REPLACE INTO media(name, kind, duration) VALUES(?, ?, ?)")
            .with(name, kind, duration)
            .run();
    };
    add(plan.longAudio.name, "audio", plan.longAudio.seconds);
    for (const auto& asset : plan.shortAudio) {
        add(asset.name, "audio", asset.seconds);
    }
    for (const auto& asset : plan.artwork) {
        add(asset.name, "image", 0);
    }
    for (const auto& asset : plan.banners) {
        add(asset.name, "image", 0);
    }
}

}  // namespace tb::service

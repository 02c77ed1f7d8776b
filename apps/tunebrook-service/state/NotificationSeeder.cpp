#include "tunebrook-service/state/NotificationSeeder.h"

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/catalogue/NameBank.h"
#include "tunebrook-service/core/SeededRandom.h"

namespace tb::service {

void NotificationSeeder::seed(ServiceContext& context, int64_t accountId) {
    auto artists = context.accounts.find("a.uploader = 1 ORDER BY a.id", {}, 0, 200);
    auto songs =
        context.music.find("m.type = 'song' AND m.status = 'active' ORDER BY m.id", {}, 0, 1000);
    auto playlists = context.playlists.find("p.private = 0 ORDER BY p.id", {}, 0, 200);
    if (artists.size() < 2 || songs.empty() || playlists.empty()) {
        return;
    }
    SeededRandom random(SeededRandom::derive(static_cast<uint64_t>(accountId), "notifications"));
    double now = context.now();
    int index = 0;
    auto add = [&](NotificationRow row) {
        row.created = now - 3600.0 * (index * 7 + 1);
        row.seen = index >= 3;
        context.notifications.add(accountId, row);
        ++index;
    };
    for (int i = 0; i < 2; ++i) {
        const auto& actor = artists[static_cast<size_t>(random.below(artists.size()))];
        context.library.setFollow(actor.id, accountId, true, now);
        add({0, "follow", actor.id, "", 0, 0, "", "", 0, false});
    }
    auto song = [&]() { return random.pick(songs).id; };
    auto actor = [&]() { return random.pick(artists).id; };
    add({0, "favorite", actor(), "music", song(), 0, "", "", 0, false});
    add({0, "reup", actor(), "music", song(), 0, "", "", 0, false});
    const auto& playlist = random.pick(playlists);
    auto tracks = context.playlists.tracks(playlist.id);
    if (!tracks.empty()) {
        add({0, "playlist_updated", playlist.owner.id, "music", tracks.front().id, playlist.id, "",
             "", 0, false});
    }
    std::string comment = NameBank::comment(random);
    add({0, "comment", actor(), "music", song(), 0, comment, "", 0, false});
    add({0, "comment", actor(), "music", song(), 0, NameBank::comment(random), comment, 0, false});
}

}  // namespace tb::service

#include "tunebrook-service/state/DemoAccount.h"

#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/auth/PasswordHasher.h"
#include "tunebrook-service/core/Crypto.h"
#include "tunebrook-service/core/FileUtil.h"
#include "tunebrook-service/state/NotificationSeeder.h"

namespace tb::service {

namespace {

void furnish(ServiceContext& context, int64_t id) {
    double now = context.now();
    auto artists = context.accounts.find("a.uploader = 1 ORDER BY a.base_followers DESC", {}, 0, 4);
    for (const auto& artist : artists) {
        context.library.setFollow(id, artist.id, true, now);
    }
    auto songs = context.music.find(
        "m.type = 'song' AND m.album_id = 0 AND m.status = 'active' AND m.geo_restricted = 0 "
        "ORDER BY m.plays_weekly DESC",
        {}, 0, 5);
    for (const auto& song : songs) {
        context.library.setFavorite(id, "music", song.id, true, now);
    }
    NotificationSeeder::seed(context, id);
}

}  // namespace

bool DemoAccount::ensure(ServiceContext& context, const std::string& path, std::string& error) {
    auto account = context.accounts.byEmail(kEmail);
    if (account && FileUtil::exists(path)) {
        return true;
    }
    std::string password = Crypto::randomAlphanumeric(16);
    if (password.empty()) {
        error = "no random source for the demo password";
        return false;
    }
    if (account) {
        context.accounts.setPasswordHash(account->id, PasswordHasher::hash(password));
    } else {
        account = context.accounts.create(
            {"Demo Listener", std::string(kEmail), PasswordHasher::hash(password), "", ""},
            context.now());
        if (!account) {
            error = "the demo account could not be made";
            return false;
        }
        furnish(context, account->id);
    }
    nlohmann::json file = {{"email", kEmail}, {"password", password}, {"url_slug", account->slug}};
    if (!FileUtil::writeAtomically(path, file.dump(2) + "\n", 0600)) {
        error = "cannot write " + path;
        return false;
    }
    return true;
}

}  // namespace tb::service

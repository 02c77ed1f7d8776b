#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "support/AppRun.h"
#include "support/FileContents.h"
#include "support/ServiceCall.h"
#include "support/ServiceSuite.h"
#include "support/ServiceTestSigner.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

using json = nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

std::int64_t numberOf(const json& value) {
    return value.is_string() ? std::stoll(value.get<std::string>()) : value.get<std::int64_t>();
}

// The tunebrook binary against one reference service for the whole suite. What the client
// printed is checked against the service's own answer to the same question, fetched with a
// signer that shares no code with the client.
class CatalogueCommandsTest : public ServiceSuite {
  protected:
    static AppRun app(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(),
                         {"--home", home_.path(), "--keys", serviceFile("keys.json")});
        return AppRun::of(TB_APP_BINARY, arguments);
    }

    // The client's --json answer, which must be the whole of its stdout.
    static json appJSON(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "--json");
        const AppRun run = app(std::move(arguments));
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_THAT(run.err, HasSubstr("launch: environment -> live"));
        return json::parse(run.out, nullptr, false);
    }

    static json serviceJSON(const std::string& path, const ServiceTestSigner::Params& params = {}) {
        const ServiceTestSigner signer(service().consumerKey(), service().consumerSecret());
        auto answer = serviceCall(service(), signer, "GET", path, params);
        EXPECT_TRUE(answer && answer->status == 200) << path;
        return answer ? json::parse(answer->body, nullptr, false) : json();
    }

    static void postAdmin(const std::string& path, const json& body) {
        httplib::Client client(service().host(), service().port());
        auto answer = client.Post(path, body.dump(), "application/json");
        ASSERT_TRUE(answer && answer->status / 100 == 2) << path;
    }

    inline static TempDir home_;
};

TEST_F(CatalogueCommandsTest, AChartComesOutAsTheServiceSentItUnderTheModelsNames) {
    const json printed = appJSON({"chart", "songs", "--genre", "rap", "--period", "monthly"});
    const json sent = serviceJSON("rap/chart/songs/monthly", {{"page", "1"}});
    ASSERT_TRUE(printed.is_object());
    ASSERT_TRUE(sent["results"].is_array());

    std::vector<json> playable;
    for (const auto& entry : sent["results"]) {
        if (!entry.value("geo_restricted", false)) {
            playable.push_back(entry);
        }
    }
    const auto& items = printed["items"];
    ASSERT_EQ(items.size(), playable.size());
    ASSERT_FALSE(items.empty());
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto& item = items[i];
        EXPECT_EQ(item["itemID"], idText(playable[i]["id"]));
        EXPECT_EQ(item["title"], playable[i]["title"]);
        EXPECT_EQ(item["uploaderSlug"], playable[i]["uploader"]["url_slug"]);
        EXPECT_EQ(item["duration"].get<std::int64_t>(), numberOf(playable[i]["duration"]));
        EXPECT_EQ(item["genre"], "rap");
        EXPECT_EQ(item["itemType"], "song");
        EXPECT_EQ(item["isSong"], true);
        EXPECT_EQ(item["georestricted"], false);
        // Every field of the record is there, set or not.
        for (const char* field : {"uploaderTastemaker", "tracksIDs", "rankDaily", "volumeData",
                                  "verifiedSearchResult", "downloadCompleted"}) {
            EXPECT_TRUE(item.contains(field)) << field;
        }
    }
    EXPECT_EQ(printed["nextPage"], 2);
}

TEST_F(CatalogueCommandsTest, AnAlbumByIdAndBySlugIsTheSameAlbumWithItsTracks) {
    const json recent = serviceJSON("music/recent", {{"page", "1"}});
    json album;
    for (const auto& entry : recent["results"]) {
        if (entry["type"] == "album") {
            album = entry;
            break;
        }
    }
    ASSERT_TRUE(album.is_object()) << "no album among the recent music";
    const std::string id = idText(album["id"]);

    const json byId = appJSON({"album", id});
    const auto& item = byId["item"];
    EXPECT_EQ(item["itemID"], id);
    EXPECT_EQ(item["isAlbum"], true);
    const json sent = serviceJSON("music/album/" + id);
    ASSERT_EQ(item["tracks"].size(), sent["results"]["tracks"].size());
    for (const auto& track : item["tracks"]) {
        EXPECT_EQ(track["isAlbumTrack"], true);
        EXPECT_EQ(track["parentID"], id);
    }

    const std::string slug = album["uploader"]["url_slug"].get<std::string>() + "/album/" +
                             album["url_slug"].get<std::string>();
    const json bySlug = appJSON({"album", slug});
    EXPECT_EQ(bySlug["item"]["itemID"], id);
    // The two slugs alone, as a shared link names the album.
    const json byLink = appJSON({"album", album["uploader"]["url_slug"].get<std::string>() + "/" +
                                              album["url_slug"].get<std::string>()});
    EXPECT_EQ(byLink["item"]["itemID"], id);
}

TEST_F(CatalogueCommandsTest, AnArtistAndTheirUploadsAndAnAccountSearch) {
    const json trending = appJSON({"trending"});
    ASSERT_FALSE(trending["items"].empty());
    const std::string slug = trending["items"][0]["uploaderSlug"];

    const json artist = appJSON({"artist", slug});
    EXPECT_EQ(artist["artist"]["urlSlug"], slug);
    const json uploads = appJSON({"artist", slug, "uploads"});
    ASSERT_FALSE(uploads["items"].empty());
    for (const auto& item : uploads["items"]) {
        EXPECT_EQ(item["uploaderSlug"], slug);
    }

    const json found = appJSON({"search", artist["artist"]["name"], "--category", "artists"});
    ASSERT_TRUE(found["results"].is_array());
    bool listed = false;
    for (const auto& row : found["results"]) {
        ASSERT_TRUE(row.contains("artist"));
        listed = listed || row["artist"]["urlSlug"] == slug;
    }
    EXPECT_TRUE(listed);
}

TEST_F(CatalogueCommandsTest, PeopleGetNumberedLinesAndThePageThatFollows) {
    const AppRun run = app({"trending"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("launch: featured music -> requested"));
    EXPECT_THAT(run.out, HasSubstr("\n 1. "));
    EXPECT_THAT(run.out, HasSubstr("Next page: --page 2"));

    const AppRun featured = app({"featured"});
    ASSERT_EQ(featured.status, 0) << featured.err;
    EXPECT_THAT(featured.out, HasSubstr("* the spot the app shows now"));
}

TEST_F(CatalogueCommandsTest, FailuresAreToldOnStderrWithAStatusAndNeverHang) {
    const AppRun badGenre = app({"chart", "songs", "--genre", "polka"});
    EXPECT_NE(badGenre.status, 0);
    EXPECT_THAT(badGenre.err, HasSubstr("dj-mix"));

    const AppRun missing = app({"song", "99999999"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.err, HasSubstr("answered 404"));

    // An id can't reach another path of the service.
    const AppRun hostile = app({"song", "../../../admin/health"});
    EXPECT_EQ(hostile.status, 1);
    EXPECT_THAT(hostile.err, HasSubstr("404"));

    postAdmin("/admin/faults", {{"rule", "GET music/trending=status:500,times=1"}});
    const AppRun broken = app({"trending"});
    EXPECT_EQ(broken.status, 1);
    EXPECT_THAT(broken.err, HasSubstr("answered 500"));
    EXPECT_THAT(broken.out, Not(HasSubstr(" 1. ")));

    // A 200 whose body can't be read is told by what went wrong, not by its status.
    postAdmin("/admin/faults", {{"method", "GET"},
                                {"path", "music/recent"},
                                {"action", "status"},
                                {"status", 200},
                                {"body", "<html>busy</html>"},
                                {"times", 1}});
    const AppRun unreadable = app({"recent"});
    EXPECT_EQ(unreadable.status, 1);
    EXPECT_THAT(unreadable.err, HasSubstr("isn't in the correct format"));
    EXPECT_THAT(unreadable.err, Not(HasSubstr("answered 200")));
}

TEST_F(CatalogueCommandsTest, ADeadServiceIsToldAtOnce) {
    TempDir other;
    const std::string keys = other.file("keys.json");
    json dead = json::parse(readFileText(serviceFile("keys.json")));
    dead["wsUrlLive"] = "http://127.0.0.1:9/v1/";
    dead["wsUrlDev"] = "http://127.0.0.1:9/v1/";
    std::ofstream(keys) << dead.dump();

    const AppRun run =
        AppRun::of(TB_APP_BINARY, {"--home", other.file("home"), "--keys", keys, "recent"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("recent:"));
    EXPECT_LT(run.seconds, 20);
}

}  // namespace
}  // namespace tb::test

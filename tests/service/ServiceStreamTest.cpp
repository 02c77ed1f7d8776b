#include "service/ServiceFixture.h"
#include "support/FileContents.h"
#include "tunebrook-service/Service.h"
#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/media/MediaGenerator.h"

namespace tb::test {
namespace {

class ServiceStreamTest : public ServiceFixture {
  protected:
    // The play answer's address as a path on the server.
    std::string streamPath(const std::string& songId,
                           const ServiceTestSigner::Params& params = {{"section", "Browse"}}) {
        auto answer = call("POST", "music/" + songId + "/play", params);
        EXPECT_EQ(answer.status, 200) << answer.body;
        EXPECT_TRUE(answer.json.is_string());
        std::string url = answer.json.is_string() ? answer.json.get<std::string>() : "";
        EXPECT_EQ(url.rfind("http", 0), 0u);
        return url.substr(url.find("/media/"));
    }

    std::string fileOf(const std::string& songId) {
        auto row = service().context().music.byId(std::stoll(songId));
        return readFileText(
            tb::service::MediaGenerator::audioPath(dataDir() + "/data", row->audio));
    }

    int countedPlays() {
        int counted = 0;
        auto report = raw("GET", "/admin/report?kind=play");
        for (const auto& event : report.json["events"]) {
            counted += event["data"]["counted"].get<bool>() ? 1 : 0;
        }
        return counted;
    }
};

TEST_F(ServiceStreamTest, ThePlayAnswerIsAnAddressWhoseBytesComeInRanges) {
    std::string id = playableSongId();
    std::string path = streamPath(id);
    std::string file = fileOf(id);
    ASSERT_GT(file.size(), 1000u);

    auto whole = raw("GET", path);
    EXPECT_EQ(whole.status, 200);
    EXPECT_EQ(whole.body, file);
    EXPECT_EQ(whole.headers["Content-Type"], "audio/mpeg");
    EXPECT_EQ(whole.headers["Accept-Ranges"], "bytes");

    auto part = raw("GET", path, {{"Range", "bytes=100-199"}});
    EXPECT_EQ(part.status, 206);
    EXPECT_EQ(part.body, file.substr(100, 100));
    EXPECT_EQ(part.headers["Content-Length"], "100");
    EXPECT_EQ(part.headers["Content-Range"], "bytes 100-199/" + std::to_string(file.size()));

    auto tail = raw("GET", path, {{"Range", "bytes=-10"}});
    EXPECT_EQ(tail.body, file.substr(file.size() - 10));
    auto open = raw("GET", path, {{"Range", "bytes=1000-"}});
    EXPECT_EQ(open.body, file.substr(1000));

    auto head = raw("HEAD", path);
    EXPECT_EQ(head.status, 200);
    EXPECT_EQ(head.headers["Content-Length"], std::to_string(file.size()));
    EXPECT_TRUE(head.body.empty());

    auto beyond = raw("GET", path, {{"Range", "bytes=" + std::to_string(file.size()) + "-"}});
    EXPECT_EQ(beyond.status, 416);
    EXPECT_EQ(beyond.headers["Content-Range"], "bytes */" + std::to_string(file.size()));
}

TEST_F(ServiceStreamTest, ExpiredForgedOrBorrowedAddressesAndUnplayableSongsAreRefused) {
    std::string id = playableSongId();
    std::string path = streamPath(id);
    std::string other = playableSongId(1);
    std::string borrowed = path;
    borrowed.replace(borrowed.find(id), id.size(), other);
    EXPECT_EQ(raw("GET", borrowed).status, 403);
    EXPECT_EQ(raw("GET", path.substr(0, path.size() - 4) + "beef").status, 403);
    EXPECT_EQ(raw("GET", "/media/audio/" + id + ".mp3").status, 403);
    advanceClock(61);
    EXPECT_EQ(raw("GET", path).status, 403);
    EXPECT_EQ(raw("GET", streamPath(id)).status, 200);
}

TEST_F(ServiceStreamTest, APlayCountsOncePerSessionAndSongAndOnlyWithASession) {
    std::string id = playableSongId();
    streamPath(id, {{"section", "Browse"}});  // no session: an address, nothing counted
    EXPECT_EQ(countedPlays(), 0);
    streamPath(id, {{"session", "device-1"}, {"section", "Browse"}});
    streamPath(id, {{"session", "device-1"}, {"section", "Browse"}, {"hq", "1"}});
    EXPECT_EQ(countedPlays(), 1);
    streamPath(id, {{"session", "device-2"}, {"section", ""}});
    streamPath(playableSongId(1), {{"session", "device-1"}, {"section", ""}});
    EXPECT_EQ(countedPlays(), 3);

    // Listening again later is a new play; within the window it is the same one.
    ASSERT_LT(service().context().music.byId(std::stoll(id))->duration, 300);
    advanceClock(200);
    streamPath(id, {{"session", "device-1"}, {"section", "Browse"}});
    EXPECT_EQ(countedPlays(), 3);
    advanceClock(101);
    streamPath(id, {{"session", "device-1"}, {"section", "Browse"}});
    EXPECT_EQ(countedPlays(), 4);
}

TEST_F(ServiceStreamTest, TheThirtySecondReportIsRecordedApart) {
    std::string id = playableSongId();
    auto report = call("POST", "music/" + id + "/play",
                       {{"time", "30"}, {"session", "device-1"}, {"section", "Search"}});
    EXPECT_EQ(report.status, 200);
    auto events = raw("GET", "/admin/report?kind=time_report").json["events"];
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0]["data"]["music_id"], id);
    EXPECT_EQ(events[0]["data"]["time"], "30");
    EXPECT_EQ(events[0]["data"]["section"], "Search");
    EXPECT_EQ(countedPlays(), 0);
    EXPECT_EQ(call("POST", "music/" + id + "/play", {{"time", "soon"}}).status, 400);

    EXPECT_EQ(call("POST", "music/" + geoRestrictedSongId() + "/play").status, 403);
    EXPECT_EQ(call("POST", "music/" + songIdWithStatus("takedown") + "/play").status, 404);
    EXPECT_EQ(call("POST", "music/999999/play").status, 404);

    std::string albumId;
    std::string track = albumTrackId(albumId);
    EXPECT_EQ(call("POST", "music/" + track + "/play", {{"album_id", albumId}}).status, 200);
    EXPECT_EQ(call("POST", "music/" + track + "/play", {{"album_id", "1"}}).status, 400);
    EXPECT_EQ(call("POST", "music/" + track + "/play", {{"playlist_id", "70001"}}).status == 200,
              service().context().playlists.contains(70001, std::stoll(track)));
}

}  // namespace
}  // namespace tb::test

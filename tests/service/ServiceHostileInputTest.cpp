#include "service/ServiceFixture.h"

namespace tb::test {
namespace {

class ServiceHostileInputTest : public ServiceFixture {};

TEST_F(ServiceHostileInputTest, PathsThatTryToLeaveTheirFolderFindNothing) {
    for (const char* path : {"/media/images/..%2F..%2Fservice.sqlite", "/media/images/../keys.json",
                             "/media/audio/..%2Fkeys.json.mp3", "/media/images/art-01.jpg%00",
                             "/media/images/ART-01.jpg", "/v1/../admin/report"}) {
        auto answer = raw("GET", path);
        EXPECT_TRUE(answer.status == 404 || answer.status == 400 || answer.status == 401 ||
                    answer.status == 403)
            << path << " " << answer.status;
        EXPECT_EQ(answer.body.find("consumer"), std::string::npos) << path;
    }
    EXPECT_EQ(raw("GET", "/media/images/art-01.jpg?width=400").status, 200);
}

TEST_F(ServiceHostileInputTest, SignedNonsenseBrokenEncodingsAndHugeBodiesGetClearErrors) {
    EXPECT_EQ(call("GET", "music/song/..%2F..%2Fetc").status, 404);
    EXPECT_EQ(call("GET", "chart/songs/weekly", {{"page", "99999999999999999999"}}).status, 400);
    EXPECT_EQ(call("GET", "music/song/99999999999999999999999").status, 404);
    EXPECT_EQ(call("POST", "music/status", {{"music_id", std::string(30000, ',')}}).status, 400);
    EXPECT_EQ(call("GET", "search", {{"q", std::string(5000, 'a')}}).status, 400);
    EXPECT_EQ(call("GET", "search", {{"q", "%_\\'\""}}).status, 200);
    EXPECT_EQ(call("GET", "user/nothing-here").status, 404);
    EXPECT_EQ(call("PATCH", "featured").status, 405);

    auto broken = raw("GET", "/v1/search?q=%zz", {{"Authorization", "OAuth x=\"1\""}});
    EXPECT_EQ(broken.status, 400);
    auto header = raw("GET", "/v1/featured", {{"Authorization", std::string(4000, 'A')}});
    EXPECT_EQ(header.status, 401);
    auto huge = raw("POST", "/v1/user/downloads", {}, std::string(2 * 1024 * 1024, 'a'),
                    "application/x-www-form-urlencoded");
    EXPECT_TRUE(!huge.transportOk || huge.status == 413) << huge.status;
    auto notJson = raw("POST", "/admin/notifications", {}, R"({"verb": 5, "account_id": [1]})",
                       "application/json");
    EXPECT_EQ(notJson.status, 400);
    // The service is still there.
    EXPECT_EQ(call("GET", "featured").status, 200);
}

}  // namespace
}  // namespace tb::test

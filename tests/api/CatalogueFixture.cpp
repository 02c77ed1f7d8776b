#include "CatalogueFixture.h"

#include "api/TBSessionGateHolder.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "platform/JSON.h"

namespace tb::test {

CatalogueTest::CatalogueTest() {
    TBDataManager::useProd();
    platform.context().sessionGate().install(&session);
}

CatalogueTest::~CatalogueTest() {
    platform.context().sessionGate().install(nullptr);
}

ServiceCall CatalogueTest::call(std::size_t index) const {
    const HttpRequest& request = platform.http.request(index);
    ServiceCall result;
    result.method = request.method;
    const auto question = request.url.find('?');
    result.url = request.url.substr(0, question);
    const std::string base = kLiveBase;
    result.path = result.url.rfind(base, 0) == 0 ? result.url.substr(base.size()) : result.url;
    if (question != std::string::npos) {
        for (auto& [key, value] : parseFormBody(request.url.substr(question + 1))) {
            result.params[key] = value;
        }
    }
    for (auto& [key, value] : parseFormBody(request.body)) {
        result.params[key] = value;
    }
    return result;
}

void CatalogueTest::answer(std::size_t index, int status, const std::string& body) {
    platform.http.respond(index, status, body);
    platform.queue.runUntilIdle();
}

void CatalogueTest::failTransfer(std::size_t index, std::int64_t urlErrorCode) {
    platform.http.fail(index, urlErrorCode);
    platform.queue.runUntilIdle();
}

TBItemsSuccess CatalogueTest::itemsInto(ListOutcome& outcome) {
    return [&outcome](const std::vector<ItemPtr>& items,
                      const std::optional<std::string>& pagingToken, const JSON& response) {
        ++outcome.successes;
        outcome.items = items;
        outcome.pagingToken = pagingToken;
        outcome.response = response.raw();
    };
}

TBArtistsSuccess CatalogueTest::artistsInto(ListOutcome& outcome) {
    return [&outcome](const std::vector<ArtistPtr>& artists,
                      const std::optional<std::string>& pagingToken, const JSON& response) {
        ++outcome.successes;
        outcome.artists = artists;
        outcome.pagingToken = pagingToken;
        outcome.response = response.raw();
    };
}

TBFailureBlock CatalogueTest::failureInto(ListOutcome& outcome) {
    return [&outcome](const TBFailureInfo& info) {
        ++outcome.failures;
        outcome.failure = info;
    };
}

nlohmann::json songJson(const std::string& id, const std::string& title) {
    return {{"id", id},
            {"type", "song"},
            {"title", title},
            {"artist", "Someone"},
            {"duration", "185"},
            {"uploader", {{"name", "Uploader"}, {"url_slug", "uploader"}, {"verified", "yes"}}},
            {"stats", {{"plays", 1200}}}};
}

nlohmann::json restrictedSongJson(const std::string& id) {
    auto song = songJson(id, "Restricted");
    song["geo_restricted"] = true;
    return song;
}

nlohmann::json playlistJson(const std::string& id, const std::string& title) {
    return {{"id", id},
            {"type", "playlist"},
            {"title", title},
            {"artist", {{"name", "Curator"}, {"url_slug", "curator"}, {"verified", "tastemaker"}}},
            {"tracks", nlohmann::json::array({songJson(id + "1"), songJson(id + "2")})}};
}

nlohmann::json artistJson(const std::string& id, const std::string& slug) {
    return {{"id", id}, {"name", "Artist " + id}, {"url_slug", slug}, {"verified", "yes"}};
}

nlohmann::json resultsOf(const std::vector<nlohmann::json>& rows) {
    return {{"results", rows}};
}

}  // namespace tb::test

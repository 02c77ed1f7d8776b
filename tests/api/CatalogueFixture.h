#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "api/TBDataManager.h"
#include "api/TBFailureInfo.h"
#include "api/TBSessionGate.h"
#include "support/DaoTestSupport.h"
#include "support/TestPlatform.h"

#include <gtest/gtest.h>

namespace tb::test {

inline constexpr const char* kLiveBase = "https://api.tunebrook.test/v1/";

// A session the test scripts: who is signed in, and refreshes that wait for the test.
class ScriptedSession final : public TBSessionGate {
  public:
    struct Refresh {
        std::function<void()> success;
        std::function<void()> failure;
    };

    bool loggedIn() override { return signedIn; }
    std::optional<std::string> userSlug() override { return slug; }
    std::vector<ItemPtr> highlights() override { return current; }
    void refreshToken(std::function<void()> success, std::function<void()> failure) override {
        refreshes.push_back({std::move(success), std::move(failure)});
    }

    bool signedIn = false;
    std::optional<std::string> slug;
    std::vector<ItemPtr> current;
    std::vector<Refresh> refreshes;
};

// One request as the service sees it: method, path under the base URL, and its parameters
// from the query and the form body.
struct ServiceCall {
    std::string method;
    std::string url;
    std::string path;
    std::map<std::string, std::string> params;
};

// What a catalogue operation handed to its blocks.
struct ListOutcome {
    int successes = 0;
    int failures = 0;
    std::vector<ItemPtr> items;
    std::vector<ArtistPtr> artists;
    std::optional<std::string> pagingToken;
    nlohmann::json response;
    std::optional<TBFailureInfo> failure;
};

// A fresh app context on fakes, on the live environment, with a scripted session.
class CatalogueTest : public ::testing::Test {
  protected:
    CatalogueTest();
    ~CatalogueTest() override;

    TBDataManager& manager() { return TBDataManager::sharedManager(); }

    ServiceCall call(std::size_t index) const;
    std::size_t sentCount() const { return platform.http.count(); }
    // Answers request `index` and runs the queue.
    void answer(std::size_t index, int status, const std::string& body);
    void answer(std::size_t index, int status, const nlohmann::json& body) {
        answer(index, status, body.dump());
    }
    void failTransfer(std::size_t index, std::int64_t urlErrorCode);

    TBItemsSuccess itemsInto(ListOutcome& outcome);
    TBArtistsSuccess artistsInto(ListOutcome& outcome);
    TBFailureBlock failureInto(ListOutcome& outcome);

    TestPlatform platform;
    ScriptedSession session;
};

// Service answers.
nlohmann::json songJson(const std::string& id, const std::string& title = "Song");
nlohmann::json restrictedSongJson(const std::string& id);
nlohmann::json playlistJson(const std::string& id, const std::string& title = "Playlist");
nlohmann::json artistJson(const std::string& id, const std::string& slug);
nlohmann::json resultsOf(const std::vector<nlohmann::json>& rows);

}  // namespace tb::test

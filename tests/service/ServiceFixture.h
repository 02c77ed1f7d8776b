#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <thread>

#include <nlohmann/json.hpp>

#include "support/ServiceCall.h"
#include "support/ServiceTestSigner.h"
#include "support/TempDir.h"
#include "tunebrook-service/http/ConnectionLimits.h"

#include <gtest/gtest.h>

namespace tb::service {
class Service;
}

namespace tb::test {

// A reference service running inside the test process on a loopback port, with placeholder
// media, a clock the test can move forward, and a signer for its calls.
class ServiceFixture : public ::testing::Test {
  public:
    ServiceFixture();
    ~ServiceFixture() override;

    struct Answer {
        bool transportOk = false;  // false when the connection failed or was cut
        int status = 0;
        std::string body;
        std::map<std::string, std::string> headers;
        nlohmann::json json;  // the body parsed, or discarded
    };
    enum class Scheme { serializer, signer, none };

  protected:
    void SetUp() override;
    void TearDown() override;

    // Calls a path under the API base: parameters go into the query for GET and DELETE and
    // into a form body otherwise, and the call is signed by the scheme.
    Answer call(const std::string& method,
                const std::string& path,
                const ServiceTestSigner::Params& params = {},
                Scheme scheme = Scheme::serializer);
    // The Authorization header of a call to a path under the API base, signed over `params`.
    std::string authorization(const std::string& method,
                              const std::string& path,
                              const ServiceTestSigner::Params& params,
                              Scheme scheme);
    // A plain request to a path of the server (media, admin), with extra headers.
    Answer raw(const std::string& method,
               const std::string& pathAndQuery,
               const std::map<std::string, std::string>& headers = {},
               const std::string& body = "",
               const std::string& contentType = "");

    // Logs in with the demo account (or the given one) and signs later calls with the token.
    nlohmann::json loginDemo();
    nlohmann::json login(const std::string& email, const std::string& password);
    void advanceClock(double seconds) { offset_ = offset_ + seconds; }

    // Ids of the catalogue for a test to use: a standalone song that plays, one that is
    // geo-restricted, one with the given status, an album's track.
    std::string playableSongId(int index = 0);
    std::string geoRestrictedSongId();
    std::string songIdWithStatus(const std::string& status);
    std::string albumTrackId(std::string& albumId);

    tb::service::Service& service() { return *service_; }
    std::string demoPassword() const;
    const std::string& dataDir() const { return dir_.path(); }

    ServiceTestSigner signer_{"", ""};
    // The server's limits, for a test to narrow before SetUp.
    tb::service::ConnectionLimits connections_;

  private:
    TempDir dir_;
    std::unique_ptr<tb::service::Service> service_;
    std::thread thread_;
    std::atomic<double> offset_{0};
};

// The ids in a list as text: of each item's "id" when `ofItems`, else the entries themselves.
inline std::set<std::string> idSet(const nlohmann::json& list, bool ofItems = false) {
    std::set<std::string> out;
    for (const auto& entry : list) {
        out.insert(idText(ofItems ? entry["id"] : entry));
    }
    return out;
}

}  // namespace tb::test

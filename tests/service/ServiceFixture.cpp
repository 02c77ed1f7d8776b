#include "service/ServiceFixture.h"

#include <chrono>
#include <fstream>

#include <httplib.h>

#include "support/WaitFor.h"
#include "tunebrook-service/Service.h"
#include "tunebrook-service/ServiceContext.h"

namespace tb::test {

namespace {

double wallClock() {
    using namespace std::chrono;
    return duration_cast<duration<double>>(system_clock::now().time_since_epoch()).count();
}

}  // namespace

ServiceFixture::ServiceFixture() = default;

ServiceFixture::~ServiceFixture() = default;

void ServiceFixture::SetUp() {
    tb::service::ServiceOptions options;
    options.dataDir = dir_.path() + "/data";
    options.media = tb::service::MediaMode::placeholder;
    options.settings.streamUrlLifetimeSeconds = 60;
    options.now = [this] { return wallClock() + offset_.load(); };
    options.progress = [](const std::string&) {};
    options.connections = connections_;
    service_ = std::make_unique<tb::service::Service>(options);
    std::string error;
    ASSERT_TRUE(service_->start(error)) << error;
    thread_ = std::thread([this] { service_->run(); });
    ASSERT_TRUE(waitFor([this] { return service_->running(); }, std::chrono::seconds(1)));
    std::ifstream keysFile(options.dataDir + "/keys.json");
    auto keys = nlohmann::json::parse(keysFile);
    signer_ = ServiceTestSigner(keys["tunebrookConsumerKey"], keys["tunebrookConsumerSecret"]);
}

void ServiceFixture::TearDown() {
    if (service_) {
        service_->stop();
    }
    if (thread_.joinable()) {
        thread_.join();
    }
    service_.reset();
}

ServiceFixture::Answer ServiceFixture::raw(const std::string& method,
                                           const std::string& pathAndQuery,
                                           const std::map<std::string, std::string>& headers,
                                           const std::string& body,
                                           const std::string& contentType) {
    httplib::Client client("127.0.0.1", service_->port());
    client.set_url_encode(false);
    client.set_read_timeout(10, 0);
    httplib::Request request;
    request.method = method;
    request.path = pathAndQuery;
    request.headers = httplib::Headers(headers.begin(), headers.end());
    request.body = body;
    if (!contentType.empty()) {
        request.set_header("Content-Type", contentType);
    }
    httplib::Result result = client.send(request);
    Answer answer;
    if (!result) {
        return answer;
    }
    answer.transportOk = true;
    answer.status = result->status;
    answer.body = result->body;
    for (const auto& [key, value] : result->headers) {
        answer.headers[key] = value;
    }
    answer.json = nlohmann::json::parse(answer.body, nullptr, false);
    return answer;
}

std::string ServiceFixture::authorization(const std::string& method,
                                          const std::string& path,
                                          const ServiceTestSigner::Params& params,
                                          Scheme scheme) {
    std::string url = service_->baseUrl() + path;
    std::string timestamp = ServiceTestSigner::timestampNow();
    std::string nonce = ServiceTestSigner::freshNonce();
    if (scheme == Scheme::serializer) {
        return signer_.serializerHeader(method, url, params, timestamp, nonce);
    }
    if (scheme == Scheme::signer) {
        return signer_.signerHeader(method, url, params, timestamp, nonce);
    }
    return "";
}

ServiceFixture::Answer ServiceFixture::call(const std::string& method,
                                            const std::string& path,
                                            const ServiceTestSigner::Params& params,
                                            Scheme scheme) {
    std::map<std::string, std::string> headers;
    if (scheme != Scheme::none) {
        headers["Authorization"] = authorization(method, path, params, scheme);
    }
    std::string encoded = ServiceTestSigner::formEncode(params);
    std::string target = "/v1/" + path;
    if (method == "GET" || method == "DELETE") {
        return raw(method, encoded.empty() ? target : target + "?" + encoded, headers);
    }
    return raw(method, target, headers, encoded, "application/x-www-form-urlencoded");
}

namespace {

std::string firstId(tb::service::ServiceContext& context, const std::string& where, int index) {
    auto rows = context.music.find(where + " ORDER BY m.id", {}, index, 1);
    return rows.empty() ? std::string() : std::to_string(rows.front().id);
}

const std::string kActiveSong = "m.type = 'song' AND m.status = 'active' AND ";

}  // namespace

std::string ServiceFixture::playableSongId(int index) {
    return firstId(service_->context(), kActiveSong + "m.geo_restricted = 0 AND m.album_id = 0",
                   index);
}

std::string ServiceFixture::geoRestrictedSongId() {
    return firstId(service_->context(), kActiveSong + "m.geo_restricted = 1", 0);
}

std::string ServiceFixture::songIdWithStatus(const std::string& status) {
    return firstId(service_->context(), "m.type = 'song' AND m.status = '" + status + "'", 0);
}

std::string ServiceFixture::albumTrackId(std::string& albumId) {
    auto rows = service_->context().music.find(
        kActiveSong + "m.geo_restricted = 0 AND m.album_id != 0 ORDER BY m.id", {}, 0, 1);
    albumId = rows.empty() ? "" : std::to_string(rows.front().albumId);
    return rows.empty() ? "" : std::to_string(rows.front().id);
}

std::string ServiceFixture::demoPassword() const {
    std::ifstream file(dir_.path() + "/data/demo-account.json");
    return nlohmann::json::parse(file)["password"];
}

nlohmann::json ServiceFixture::login(const std::string& email, const std::string& password) {
    signer_.clearToken();
    Answer answer = call("POST", "access_token",
                         {{"x_auth_mode", "client_auth"},
                          {"x_auth_username", email},
                          {"x_auth_password", password}});
    if (answer.status == 200) {
        signer_.setToken(answer.json["oauth_token"], answer.json["oauth_token_secret"]);
    }
    return answer.json;
}

nlohmann::json ServiceFixture::loginDemo() {
    return login("demo@tunebrook.test", demoPassword());
}

}  // namespace tb::test

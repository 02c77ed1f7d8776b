#pragma once

#include <memory>
#include <string>
#include <vector>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "support/ServiceProcess.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace tb::test {

// A suite of tests against one reference service process, started once for the suite on a
// data folder of its own, with stand-in media. Each test checks first that it started.
// Header only: the service's binary is known to each test binary, not to the support library.
class ServiceSuite : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        dir_ = std::make_unique<TempDir>();
        service_ = std::make_unique<ServiceProcess>(
            TB_SERVICE_BINARY, dir_->file("service"),
            std::vector<std::string>{"--media", "placeholder", "--media-cache",
                                     ServiceProcess::mediaCacheFor(TB_SERVICE_BINARY)});
    }
    static void TearDownTestSuite() {
        service_.reset();
        dir_.reset();
    }
    void SetUp() override { ASSERT_TRUE(service_->started()) << service_->error(); }

    static ServiceProcess& service() { return *service_; }
    // A file of the service's data folder ("keys.json", "demo-account.json").
    static std::string serviceFile(const std::string& name) {
        return dir_->file("service/" + name);
    }
    // An admin call (GET, DELETE, or POST with a JSON body); its JSON answer, null when none.
    static nlohmann::json admin(const std::string& method,
                                const std::string& path,
                                const nlohmann::json& body = nlohmann::json::object()) {
        httplib::Client client(service_->host(), service_->port());
        auto answer = method == "GET"      ? client.Get(path)
                      : method == "DELETE" ? client.Delete(path)
                                           : client.Post(path, body.dump(), "application/json");
        return answer ? nlohmann::json::parse(answer->body, nullptr, false) : nlohmann::json();
    }

  private:
    inline static std::unique_ptr<TempDir> dir_;
    inline static std::unique_ptr<ServiceProcess> service_;
};

}  // namespace tb::test

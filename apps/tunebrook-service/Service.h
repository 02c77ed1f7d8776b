#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "tunebrook-service/ServiceOptions.h"

namespace tb::service {

class ApiRouter;
class ConnectionServer;
class Database;
class DataFolder;
class FaultInjector;
class NonceCache;
class RequestAuthenticator;
struct ServiceContext;

// The reference service: its store, catalogue and media in the data folder, the HTTP server
// on a loopback port, and the routes. `start` prepares everything and binds; `run` serves
// until `stop`, which may be called from any thread.
class Service {
  public:
    explicit Service(ServiceOptions options);
    ~Service();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    bool start(std::string& error);
    // Serves until `stop`; returns at once when `stop` came first.
    void run();
    void stop();
    bool running() const;

    int port() const { return port_; }
    // "http://127.0.0.1:<port>/v1/": the API base; paths are appended to it.
    const std::string& baseUrl() const { return baseUrl_; }
    const std::string& origin() const { return origin_; }
    FaultInjector& faults() { return *faults_; }
    ServiceContext& context() { return *context_; }

  private:
    bool prepareFolder(std::string& error);
    bool prepareStore(std::string& error);
    bool prepareCatalogue(std::string& error);
    bool bind(std::string& error);
    // Binds 127.0.0.1:`port`; the port, or -1 when it is taken.
    int bindTo(int port);
    void installRoutes();
    void configureServer();

    ServiceOptions options_;
    std::unique_ptr<DataFolder> folder_;
    std::unique_ptr<Database> db_;
    std::unique_ptr<FaultInjector> faults_;
    std::unique_ptr<ConnectionServer> server_;
    std::unique_ptr<ServiceContext> context_;
    std::unique_ptr<NonceCache> nonces_;
    std::unique_ptr<RequestAuthenticator> authenticator_;
    std::unique_ptr<ApiRouter> router_;
    std::string consumerKey_;
    std::string consumerSecret_;
    std::string mediaSecret_;
    std::atomic<bool> stopRequested_{false};
    uint64_t seed_ = 0;
    int port_ = 0;
    std::string origin_;
    std::string baseUrl_;
};

}  // namespace tb::service

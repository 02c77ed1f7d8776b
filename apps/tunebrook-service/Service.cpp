#include "tunebrook-service/Service.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "tunebrook-service/KeysFile.h"
#include "tunebrook-service/auth/NonceCache.h"
#include "tunebrook-service/auth/RequestAuthenticator.h"
#include "tunebrook-service/catalogue/CatalogueGenerator.h"
#include "tunebrook-service/core/Crypto.h"
#include "tunebrook-service/core/DataFolder.h"
#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/http/AdminRoutes.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/ConnectionServer.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/FaultActions.h"
#include "tunebrook-service/http/FaultInjector.h"
#include "tunebrook-service/http/RemoteConfigRoutes.h"
#include "tunebrook-service/http/Reply.h"
#include "tunebrook-service/http/RequestBody.h"
#include "tunebrook-service/media/MediaPlan.h"
#include "tunebrook-service/media/MediaRoutes.h"
#include "tunebrook-service/routes/ActionRoutes.h"
#include "tunebrook-service/routes/ArtistRoutes.h"
#include "tunebrook-service/routes/AuthRoutes.h"
#include "tunebrook-service/routes/ChartRoutes.h"
#include "tunebrook-service/routes/DownloadRoutes.h"
#include "tunebrook-service/routes/HighlightRoutes.h"
#include "tunebrook-service/routes/MusicRoutes.h"
#include "tunebrook-service/routes/OnboardingRoutes.h"
#include "tunebrook-service/routes/PlaylistRoutes.h"
#include "tunebrook-service/routes/ProfileRoutes.h"
#include "tunebrook-service/routes/SearchRoutes.h"
#include "tunebrook-service/routes/StreamRoutes.h"
#include "tunebrook-service/routes/UserRoutes.h"
#include "tunebrook-service/state/DemoAccount.h"
#include "tunebrook-service/state/MetaStore.h"
#include "tunebrook-service/state/Schema.h"

namespace tb::service {

namespace {

double wallClock() {
    using namespace std::chrono;
    return duration_cast<duration<double>>(system_clock::now().time_since_epoch()).count();
}

// A secret kept in the store: made once from the secure source, then read back.
bool storedSecret(MetaStore& meta, const std::string& key, size_t length, std::string& out) {
    if (auto value = meta.get(key)) {
        out = *value;
        return true;
    }
    out = Crypto::randomAlphanumeric(length);
    return !out.empty() && meta.set(key, out);
}

RequestBody readBody(const httplib::Request& request,
                     const httplib::ContentReader& reader,
                     size_t maxBody) {
    RequestBody body;
    if (!request.is_multipart_form_data()) {
        bool read = reader([&](const char* data, size_t length) {
            body.tooLarge = body.text.size() + length > maxBody;
            if (!body.tooLarge) {
                body.text.append(data, length);
            }
            return !body.tooLarge;
        });
        body.cutShort = !read && !body.tooLarge;
        return body;
    }
    body.multipart = true;
    bool isFile = false;
    size_t size = 0;
    bool read = reader(
        [&](const httplib::MultipartFormData& part) {
            isFile = !part.filename.empty();
            if (!isFile) {
                body.fields.push_back({part.name, "", true});
            }
            return true;
        },
        [&](const char* data, size_t length) {
            size += length;
            body.tooLarge = size > maxBody;
            if (!isFile && !body.tooLarge) {
                body.fields.back().value.append(data, length);
            }
            return !body.tooLarge;
        });
    body.cutShort = !read && !body.tooLarge;
    return body;
}

}  // namespace

Service::Service(ServiceOptions options) : options_(std::move(options)) {
    if (!options_.now) {
        options_.now = wallClock;
    }
    if (!options_.progress) {
        options_.progress = [](const std::string& line) {
            std::fprintf(stderr, "tunebrook-service: %s\n", line.c_str());
        };
    }
    faults_ = std::make_unique<FaultInjector>();
}

Service::~Service() {
    stop();
}

bool Service::start(std::string& error) {
    for (const auto& text : options_.faults) {
        auto rule = FaultRule::parse(text, error);
        if (!rule) {
            error = "--fault " + text + ": " + error;
            return false;
        }
        faults_->add(*rule);
    }
    if (!prepareFolder(error) || !prepareStore(error) || !prepareCatalogue(error) || !bind(error)) {
        return false;
    }
    context_ = std::make_unique<ServiceContext>(*db_, options_.dataDir, origin_, mediaSecret_,
                                                options_.settings, options_.now);
    nonces_ = std::make_unique<NonceCache>(options_.settings.timestampWindowSeconds);
    nonces_->keepIn(*db_, static_cast<int64_t>(options_.now()));
    authenticator_ =
        std::make_unique<RequestAuthenticator>(consumerKey_, consumerSecret_, context_->tokens,
                                               *nonces_, options_.settings.timestampWindowSeconds);
    router_ = std::make_unique<ApiRouter>(*authenticator_, context_->events,
                                          "127.0.0.1:" + std::to_string(port_), options_.now);
    installRoutes();
    if (!DemoAccount::ensure(*context_, options_.dataDir + "/demo-account.json", error)) {
        return false;
    }
    if (!KeysFile::write(options_.dataDir + "/keys.json", baseUrl_, origin_, consumerKey_,
                         consumerSecret_)) {
        error = "cannot write " + options_.dataDir + "/keys.json";
        return false;
    }
    return true;
}

bool Service::prepareFolder(std::string& error) {
    folder_ = std::make_unique<DataFolder>(options_.dataDir);
    // The lock comes before anything is written, so that a second service changes nothing;
    // files an older version made readable by others are narrowed at every start.
    return folder_->claim(error) && folder_->makePrivate(error);
}

bool Service::prepareStore(std::string& error) {
    db_ = Database::open(options_.dataDir + "/service.sqlite", error);
    if (!db_ || !Schema::create(*db_, error)) {
        error = "the store can't be opened: " + error;
        return false;
    }
    MetaStore meta(*db_);
    if (!storedSecret(meta, "consumer_key", 24, consumerKey_) ||
        !storedSecret(meta, "consumer_secret", 40, consumerSecret_) ||
        !storedSecret(meta, "media_secret", 40, mediaSecret_)) {
        error = "the service's keys can't be made";
        return false;
    }
    return true;
}

bool Service::prepareCatalogue(std::string& error) {
    MetaStore meta(*db_);
    if (auto stored = meta.get("catalogue_seed")) {
        seed_ = std::stoull(*stored);
        if (options_.seedGiven && seed_ != options_.seed) {
            options_.progress("keeping the catalogue made with seed " + *stored +
                              " (this data folder already has one)");
        }
    } else {
        seed_ = options_.seed;
        options_.progress("first start: making the catalogue (seed " + std::to_string(seed_) + ")");
        double anchor = options_.now();
        MediaPlan plan = MediaPlan::fromSeed(seed_);
        if (!CatalogueGenerator(*db_, seed_, anchor, options_.progress).generate(plan, error)) {
            return false;
        }
    }
    MediaGenerator media(options_.dataDir, options_.mediaCache, options_.media, options_.progress);
    return media.ensure(MediaPlan::fromSeed(seed_), seed_, error);
}

bool Service::bind(std::string& error) {
    server_ = std::make_unique<ConnectionServer>(options_.connections);
    configureServer();
    MetaStore meta(*db_);
    port_ = options_.port != 0 ? bindTo(options_.port) : -1;
    if (options_.port == 0) {
        // The port of the last run where it is free, so that the addresses a client kept
        // (artwork, paging) still lead here after a restart.
        auto last = meta.get("last_port");
        port_ = last ? bindTo(std::atoi(last->c_str())) : -1;
        if (port_ <= 0) {
            port_ = server_->bind_to_any_port("127.0.0.1");
        }
    }
    if (port_ <= 0) {
        error = "cannot listen on 127.0.0.1:" + std::to_string(options_.port);
        return false;
    }
    server_->deepenBacklog();
    meta.set("last_port", std::to_string(port_));
    origin_ = "http://127.0.0.1:" + std::to_string(port_);
    baseUrl_ = origin_ + ApiRouter::kBasePath;
    return true;
}

int Service::bindTo(int port) {
    if (port <= 0 || port > 65535) {
        return -1;
    }
    return server_->bind_to_port("127.0.0.1", port) ? port : -1;
}

void Service::configureServer() {
    // The library's default also sets SO_REUSEPORT, which would let a second service bind a
    // port this one listens on and take half of its connections. Address reuse alone still
    // allows a restart while old connections linger.
    server_->set_socket_options([](socket_t sock) {
        int yes = 1;
        setsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    });
    server_->set_keep_alive_max_count(100);
    server_->set_pre_routing_handler(
        [this](const httplib::Request& request, httplib::Response& response) {
            // Byte ranges are answered by the media routes themselves; the library's own
            // handling of them is switched off here by forgetting the ranges it parsed.
            const_cast<httplib::Request&>(request).ranges.clear();
            return FaultActions::before(*faults_, request, response)
                       ? httplib::Server::HandlerResponse::Handled
                       : httplib::Server::HandlerResponse::Unhandled;
        });
    server_->set_post_routing_handler(
        [this](const httplib::Request& request, httplib::Response& response) {
            FaultActions::after(*faults_, request, response);
        });
    server_->set_exception_handler(
        [](const httplib::Request&, httplib::Response& response, std::exception_ptr) {
            Reply::error(response, 500, kServerError, "Internal error");
        });
    server_->set_error_handler([](const httplib::Request&, httplib::Response& response) {
        if (response.body.empty() && !response.content_provider_) {
            Reply::error(response, response.status,
                         response.status == 404 ? kNotFound : kBadRequest,
                         response.status == 404 ? "Not found" : "Bad request");
        }
    });
}

void Service::installRoutes() {
    ServiceContext& context = *context_;
    AuthRoutes::install(*router_, context);
    ChartRoutes::install(*router_, context);
    MusicRoutes::install(*router_, context);
    PlaylistRoutes::install(*router_, context);
    SearchRoutes::install(*router_, context);
    ArtistRoutes::install(*router_, context);
    HighlightRoutes::install(*router_, context);
    ActionRoutes::install(*router_, context);
    UserRoutes::install(*router_, context);
    StreamRoutes::install(*router_, context);
    DownloadRoutes::install(*router_, context);
    OnboardingRoutes::install(*router_, context);
    ProfileRoutes::install(*router_, context);

    const std::string pattern = std::string(ApiRouter::kBasePath) + ".*";
    server_->Get(pattern, [this](const httplib::Request& request, httplib::Response& response) {
        if (!FaultActions::answerInstead(response)) {
            router_->dispatch(request, response, RequestBody{});
        }
    });
    // Bodies are read here rather than by the library, so that its own limit on forms
    // doesn't apply; the payload limit set above still does.
    auto withBody = [this](const httplib::Request& request, httplib::Response& response,
                           const httplib::ContentReader& reader) {
        RequestBody body = readBody(request, reader, options_.connections.maxBody);
        if (body.tooLarge || body.cutShort) {
            Reply::error(response, body.tooLarge ? 413 : 400, kBadRequest,
                         body.tooLarge ? "The body is too large" : "The body did not arrive whole");
            response.set_header("Connection", "close");
        } else if (!FaultActions::answerInstead(response)) {
            router_->dispatch(request, response, body);
        }
    };
    server_->Post(pattern, withBody);
    server_->Put(pattern, withBody);
    server_->Delete(pattern, withBody);
    server_->Patch(pattern, withBody);
    MediaRoutes::install(*server_, context);
    RemoteConfigRoutes::install(*server_, context);
    AdminRoutes::install(*server_, context, *faults_);
}

void Service::run() {
    if (server_ && !stopRequested_) {
        server_->listen_after_bind();
    }
}

void Service::stop() {
    stopRequested_ = true;
    faults_->stop();
    if (server_) {
        server_->shutDown();
    }
}

bool Service::running() const {
    return server_ && server_->is_running();
}

}  // namespace tb::service

#include "tunebrook-service/http/RemoteConfigRoutes.h"

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/http/Reply.h"
#include "tunebrook-service/state/RemoteConfigStore.h"

namespace tb::service {

void RemoteConfigRoutes::install(httplib::Server& server, ServiceContext& context) {
    server.Get(kPath, [&context](const httplib::Request&, httplib::Response& response) {
        Reply::json(response, RemoteConfigStore(context.meta).values());
    });
}

}  // namespace tb::service

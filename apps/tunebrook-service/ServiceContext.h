#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "tunebrook-service/catalogue/CatalogueView.h"
#include "tunebrook-service/catalogue/ItemJson.h"
#include "tunebrook-service/media/MediaUrlSigner.h"
#include "tunebrook-service/state/AccountStore.h"
#include "tunebrook-service/state/EventLog.h"
#include "tunebrook-service/state/LibraryStore.h"
#include "tunebrook-service/state/MetaStore.h"
#include "tunebrook-service/state/MusicStore.h"
#include "tunebrook-service/state/NotificationStore.h"
#include "tunebrook-service/state/PlaylistStore.h"
#include "tunebrook-service/state/TokenStore.h"

namespace tb::service {

class Database;

struct ServiceSettings {
    double tokenLifetimeSeconds = 30 * 86400.0;
    double streamUrlLifetimeSeconds = 3600.0;
    int64_t timestampWindowSeconds = 600;
};

// Everything the routes share: the stores over the one database, the address signer and
// the JSON builders. Built once the server knows its own address.
struct ServiceContext {
    ServiceContext(Database& database,
                   std::string dataDirectory,
                   const std::string& origin,
                   const std::string& mediaSecret,
                   ServiceSettings serviceSettings,
                   std::function<double()> clock)
        : db(database),
          dataDir(std::move(dataDirectory)),
          settings(serviceSettings),
          now(std::move(clock)),
          accounts(database),
          music(database),
          playlists(database),
          library(database),
          notifications(database),
          events(database),
          tokens(database),
          meta(database),
          urls(origin, mediaSecret, settings.streamUrlLifetimeSeconds),
          json(urls, now),
          view(json, music, playlists, accounts, library) {}

    Database& db;
    std::string dataDir;
    ServiceSettings settings;
    std::function<double()> now;
    AccountStore accounts;
    MusicStore music;
    PlaylistStore playlists;
    LibraryStore library;
    NotificationStore notifications;
    EventLog events;
    TokenStore tokens;
    MetaStore meta;
    MediaUrlSigner urls;
    ItemJson json;
    CatalogueView view;
};

}  // namespace tb::service

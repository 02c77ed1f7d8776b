#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tb::service {

class Database;

struct NotificationRow {
    int64_t id = 0;
    std::string verb;  // "favorite", "follow", "reup", "playlisted", ...
    int64_t actorId = 0;
    std::string objectKind;  // "music", "playlist" or ""
    int64_t objectId = 0;
    int64_t targetId = 0;  // a playlist, for "playlisted" and "playlist_updated"
    std::string comment;
    std::string parent;
    double created = 0;
    bool seen = false;
};

// What happened to an account, newest first, with the unseen count of the tab badge.
class NotificationStore {
  public:
    explicit NotificationStore(Database& db) : db_(db) {}

    void add(int64_t accountId, const NotificationRow& row);
    std::vector<NotificationRow> list(int64_t accountId, bool onlyUnseen, int offset, int limit);
    int64_t unseenCount(int64_t accountId);
    int markAllSeen(int64_t accountId);

  private:
    Database& db_;
};

}  // namespace tb::service

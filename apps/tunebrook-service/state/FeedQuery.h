#pragma once

#include <cstdint>
#include <vector>

#include "tunebrook-service/state/MusicRow.h"

namespace tb::service {

class MusicStore;
class Database;

// The feed of an account: what the accounts it follows uploaded and, unless only uploads
// are asked for, what they reposted; newest first.
class FeedQuery {
  public:
    static std::vector<MusicRow> page(MusicStore& music,
                                      int64_t accountId,
                                      bool onlyUploads,
                                      int offset,
                                      int limit);
    // How many entries are newer than `since`.
    static int64_t countSince(Database& db, int64_t accountId, double since);
};

}  // namespace tb::service

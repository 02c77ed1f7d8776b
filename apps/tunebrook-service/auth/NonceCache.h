#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>

namespace tb::service {

class Database;

// Remembers the nonces of accepted requests for as long as their timestamp stays inside
// the window, so a captured request can't be sent a second time.
class NonceCache {
  public:
    explicit NonceCache(int64_t windowSeconds, size_t capacity = 200000)
        : window_(windowSeconds), capacity_(capacity) {}

    // Keeps every nonce in `db` as well, and takes back those still inside the window, so
    // that a restart doesn't let a captured request through a second time.
    void keepIn(Database& db, int64_t now);

    // False when the same key (consumer, token, timestamp, nonce) was seen in the window.
    bool remember(const std::string& key, int64_t timestamp, int64_t now);
    size_t size() const;

  private:
    void purge(int64_t now);
    void insert(const std::string& key, int64_t timestamp);
    void store(const std::string& key, int64_t timestamp, int64_t now);

    int64_t window_;
    size_t capacity_;
    mutable std::mutex mutex_;
    std::set<std::string> seen_;
    std::multimap<int64_t, std::string> byTimestamp_;
    Database* db_ = nullptr;
    size_t storedSincePurge_ = 0;
};

}  // namespace tb::service

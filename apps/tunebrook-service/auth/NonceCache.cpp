#include "tunebrook-service/auth/NonceCache.h"

#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/Statement.h"

namespace tb::service {

namespace {

// Stored nonces older than the window are cleared after this many new ones.
constexpr size_t kStoredPurgeEvery = 1024;

}  // namespace

void NonceCache::keepIn(Database& db, int64_t now) {
    std::lock_guard lock(mutex_);
    db_ = &db;
    db.each("SELECT key, timestamp FROM nonces WHERE timestamp >= ? ORDER BY timestamp",
            {now - window_}, [this](const Statement& row) { insert(row.text(0), row.int64(1)); });
}

bool NonceCache::remember(const std::string& key, int64_t timestamp, int64_t now) {
    std::lock_guard lock(mutex_);
    purge(now);
    if (seen_.count(key) > 0) {
        return false;
    }
    insert(key, timestamp);
    store(key, timestamp, now);
    return true;
}

size_t NonceCache::size() const {
    std::lock_guard lock(mutex_);
    return seen_.size();
}

void NonceCache::insert(const std::string& key, int64_t timestamp) {
    if (!seen_.insert(key).second) {
        return;
    }
    byTimestamp_.emplace(timestamp, key);
    // A flood can't grow the set without bound: the oldest entries go first.
    while (seen_.size() > capacity_ && !byTimestamp_.empty()) {
        seen_.erase(byTimestamp_.begin()->second);
        byTimestamp_.erase(byTimestamp_.begin());
    }
}

void NonceCache::store(const std::string& key, int64_t timestamp, int64_t now) {
    if (!db_) {
        return;
    }
    std::lock_guard lock(db_->mutex());
    db_->prepare("INSERT OR IGNORE INTO nonces(key, timestamp) VALUES(?, ?)")
        .with(key, timestamp)
        .run();
    if (++storedSincePurge_ >= kStoredPurgeEvery) {
        storedSincePurge_ = 0;
        db_->prepare("DELETE FROM nonces WHERE timestamp < ?").with(now - window_).run();
    }
}

void NonceCache::purge(int64_t now) {
    while (!byTimestamp_.empty() && byTimestamp_.begin()->first < now - window_) {
        seen_.erase(byTimestamp_.begin()->second);
        byTimestamp_.erase(byTimestamp_.begin());
    }
}

}  // namespace tb::service

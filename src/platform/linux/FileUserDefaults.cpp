#include "platform/linux/FileUserDefaults.h"

#include <nlohmann/json.hpp>

#include "platform/Log.h"
#include "platform/MainQueue.h"
#include "platform/linux/AtomicFile.h"
#include "platform/linux/DefaultsJson.h"

namespace tb {

namespace {

// How long after a change the suite writes itself.
constexpr double kWriteDelaySeconds = 1.0;

}  // namespace

FileUserDefaults::FileUserDefaults(std::string path, MainQueue& queue, ErrorReporter& errors)
    : path_(std::move(path)),
      queue_(queue),
      errors_(errors),
      handle_(std::make_shared<FileUserDefaults*>(this)) {
    load();
}

FileUserDefaults::~FileUserDefaults() {
    if (dirty_) {
        write();
    }
}

std::optional<DefaultsValue> FileUserDefaults::objectForKey(const std::string& key) const {
    const auto found = values_.find(key);
    if (found == values_.end()) {
        return std::nullopt;
    }
    return found->second;
}

void FileUserDefaults::setObject(const std::string& key, DefaultsValue value) {
    values_[key] = std::move(value);
    changed();
}

void FileUserDefaults::removeObjectForKey(const std::string& key) {
    if (values_.erase(key) > 0) {
        changed();
    }
}

std::vector<std::string> FileUserDefaults::allKeys() const {
    std::vector<std::string> keys;
    keys.reserve(values_.size());
    for (const auto& entry : values_) {
        keys.push_back(entry.first);
    }
    return keys;
}

bool FileUserDefaults::synchronize() {
    return !dirty_ || write();
}

void FileUserDefaults::load() {
    const auto document = readJsonObjectFile(path_, errors_, "UserDefaults");
    if (!document) {
        return;
    }
    std::map<std::string, DefaultsValue> loaded;
    std::string unreadable;
    for (const auto& [key, item] : document->items()) {
        auto value = defaultsValueFromJson(item);
        if (!value) {
            unreadable += (unreadable.empty() ? "" : ", ") + key;
            continue;
        }
        loaded.emplace(key, std::move(*value));
    }
    values_ = std::move(loaded);
    // One value that can't be read costs that value, not the suite: the others (the install
    // marker among them) stay, and the file as it was is copied aside for whoever looks.
    if (!unreadable.empty()) {
        keepCopyAside(path_, errors_, "UserDefaults", kFileCorrupt,
                      "unreadable values under " + unreadable);
    }
}

void FileUserDefaults::changed() {
    dirty_ = true;
    if (writeScheduled_) {
        return;
    }
    writeScheduled_ = true;
    queue_.postAfter(kWriteDelaySeconds, [weak = std::weak_ptr(handle_)] {
        const auto handle = weak.lock();
        if (!handle) {
            return;
        }
        FileUserDefaults& self = **handle;
        self.writeScheduled_ = false;
        if (self.dirty_) {
            self.write();
        }
    });
}

bool FileUserDefaults::write() {
    nlohmann::json document = nlohmann::json::object();
    for (const auto& [key, value] : values_) {
        document[key] = defaultsValueToJson(value);
    }
    // Keys are the app's own names; should one not be UTF-8 it is written with
    // replacement characters rather than failing the whole suite.
    const std::string text =
        document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    std::string reason;
    if (!writeFileAtomically(path_, text, 0600, &reason)) {
        logLine("[UserDefaults] can't write " + path_ + ": " + reason);
        return false;
    }
    dirty_ = false;
    return true;
}

}  // namespace tb

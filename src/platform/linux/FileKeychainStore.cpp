#include "platform/linux/FileKeychainStore.h"

#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include "platform/Base64.h"
#include "platform/Log.h"
#include "platform/SafeFileName.h"
#include "platform/Utf8.h"
#include "platform/linux/AtomicFile.h"

namespace tb {

namespace {

constexpr const char* kDomain = "Keychain";

}  // namespace

FileKeychainStore::FileKeychainStore(const std::string& identity,
                                     const std::string& supportFolder,
                                     ErrorReporter& errors)
    : identity_(identity) {
    // An existing folder keeps its mode; a new one is the user's alone.
    ::mkdir(folderIn(supportFolder).c_str(), 0700);
    path_ = pathFor(identity, supportFolder);
    load(errors);
}

std::string FileKeychainStore::folderIn(const std::string& supportFolder) {
    return supportFolder + "/keychain";
}

std::string FileKeychainStore::pathFor(const std::string& identity,
                                       const std::string& supportFolder) {
    return folderIn(supportFolder) + "/" + safeFileName(identity) + ".json";
}

std::optional<std::string> FileKeychainStore::dataForKey(const std::string& key) {
    std::lock_guard lock(mutex_);
    const auto found = entries_.find(key);
    if (found == entries_.end()) {
        return std::nullopt;
    }
    return found->second;
}

bool FileKeychainStore::setData(const std::string& key, const std::string& data) {
    // Keys are names in a JSON file; one that isn't text is refused, not mangled.
    if (!isValidUtf8(key)) {
        return false;
    }
    std::lock_guard lock(mutex_);
    auto changed = entries_;
    changed[key] = data;
    if (!save(changed)) {
        return false;
    }
    entries_ = std::move(changed);
    return true;
}

bool FileKeychainStore::removeObjectForKey(const std::string& key) {
    std::lock_guard lock(mutex_);
    if (entries_.find(key) == entries_.end()) {
        return true;
    }
    auto changed = entries_;
    changed.erase(key);
    if (!save(changed)) {
        return false;
    }
    entries_ = std::move(changed);
    return true;
}

std::vector<std::string> FileKeychainStore::allKeys() {
    std::lock_guard lock(mutex_);
    std::vector<std::string> keys;
    for (const auto& entry : entries_) {
        keys.push_back(entry.first);
    }
    return keys;
}

void FileKeychainStore::load(ErrorReporter& errors) {
    const auto document = readJsonObjectFile(path_, errors, kDomain);
    if (!document) {
        return;
    }
    const auto entries = document->find("entries");
    if (entries == document->end() || !entries->is_object()) {
        setBrokenFileAside(path_, errors, kDomain, kFileCorrupt, "no entries");
        return;
    }
    std::map<std::string, std::string> loaded;
    for (const auto& [key, value] : entries->items()) {
        auto bytes = value.is_string() ? base64Decode(value.get<std::string>()) : std::nullopt;
        if (!bytes) {
            setBrokenFileAside(path_, errors, kDomain, kFileCorrupt,
                               "unreadable value under \"" + key + "\"");
            return;
        }
        loaded.emplace(key, std::move(*bytes));
    }
    entries_ = std::move(loaded);
}

bool FileKeychainStore::save(const std::map<std::string, std::string>& entries) const {
    nlohmann::json document = {{"identity", identity_}, {"entries", nlohmann::json::object()}};
    for (const auto& [key, bytes] : entries) {
        document["entries"][key] = base64Encode(bytes);
    }
    const std::string text =
        document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    std::string reason;
    if (!writeFileAtomically(path_, text, 0600, &reason)) {
        logLine("[Keychain] can't write " + path_ + ": " + reason);
        return false;
    }
    return true;
}

}  // namespace tb

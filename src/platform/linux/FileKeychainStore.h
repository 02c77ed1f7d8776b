#pragma once

#include <map>
#include <mutex>
#include <string>

#include "platform/KeychainStore.h"

namespace tb {

class ErrorReporter;

// The keychain where no Secret Service answers: one JSON file per store identity,
// "<support>/keychain/<identity>.json", readable by the user alone (0600, in a 0700 folder).
// Values are bytes, kept as base64. Every change is written atomically before it counts: a
// write that fails leaves the store as it was. A file that can't be read is set aside and
// reported (domain "Keychain"), and the store starts empty. Safe from any thread.
class FileKeychainStore final : public KeychainStore {
  public:
    FileKeychainStore(const std::string& identity,
                      const std::string& supportFolder,
                      ErrorReporter& errors);

    std::optional<std::string> dataForKey(const std::string& key) override;
    bool setData(const std::string& key, const std::string& data) override;
    bool removeObjectForKey(const std::string& key) override;
    std::vector<std::string> allKeys() override;

    const std::string& path() const { return path_; }
    // The folder of the keychain files, and the file of one identity in it.
    static std::string folderIn(const std::string& supportFolder);
    static std::string pathFor(const std::string& identity, const std::string& supportFolder);

  private:
    void load(ErrorReporter& errors);
    bool save(const std::map<std::string, std::string>& entries) const;

    std::string identity_;
    std::string path_;
    std::mutex mutex_;
    std::map<std::string, std::string> entries_;
};

}  // namespace tb

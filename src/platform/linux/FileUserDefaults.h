#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/UserDefaults.h"

namespace tb {

class ErrorReporter;
class MainQueue;

// One suite of user defaults kept in a JSON file. Values keep their kinds: text, booleans,
// integers and doubles as JSON; bytes, text that isn't UTF-8 and doubles JSON can't hold
// as one-key objects tagged "$data", "$text" and "$double".
//
// Changes are written by themselves about a second after the first of a burst (one write
// for the burst), as the platform's defaults do; only synchronize() promises durability.
// A file that can't be read or decoded is set aside as "<file>.corrupt-<time>", reported
// to the error reporter, and the suite starts empty. Main queue only.
class FileUserDefaults final : public UserDefaults {
  public:
    FileUserDefaults(std::string path, MainQueue& queue, ErrorReporter& errors);
    // Writes what is still unwritten.
    ~FileUserDefaults() override;
    FileUserDefaults(const FileUserDefaults&) = delete;
    FileUserDefaults& operator=(const FileUserDefaults&) = delete;

    std::optional<DefaultsValue> objectForKey(const std::string& key) const override;
    void setObject(const std::string& key, DefaultsValue value) override;
    void removeObjectForKey(const std::string& key) override;
    std::vector<std::string> allKeys() const override;

    // Writes the whole suite atomically. On failure returns false and keeps every value in
    // memory, to be written by the next synchronize().
    bool synchronize() override;

    const std::string& path() const { return path_; }

  private:
    void load();
    void changed();
    bool write();

    std::string path_;
    MainQueue& queue_;
    ErrorReporter& errors_;
    std::map<std::string, DefaultsValue> values_;
    bool dirty_ = false;
    bool writeScheduled_ = false;
    // Tasks posted for the delayed write hold a weak reference, so one that comes after the
    // suite is gone does nothing.
    std::shared_ptr<FileUserDefaults*> handle_;
};

}  // namespace tb

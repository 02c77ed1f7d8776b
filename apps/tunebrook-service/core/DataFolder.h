#pragma once

#include <string>

namespace tb::service {

// The service's data folder, which holds its secrets (consumer and media secrets, password
// hashes, the demo account): private to its owner, and used by one service at a time.
class DataFolder {
  public:
    explicit DataFolder(std::string path);
    ~DataFolder();
    DataFolder(const DataFolder&) = delete;
    DataFolder& operator=(const DataFolder&) = delete;

    // Creates the folder if needed and locks it for as long as this object lives. Nothing in
    // it is changed before the lock is held, so a second service on the folder changes
    // nothing; it gets false and a one-line `error`.
    bool claim(std::string& error);
    // Narrows the folder and everything in it to its owner: folders 0700, files 0600. Links
    // are left as they are and never followed.
    bool makePrivate(std::string& error) const;

    static constexpr unsigned kFolderMode = 0700;
    static constexpr unsigned kFileMode = 0600;

  private:
    std::string path_;
    int lock_ = -1;
};

}  // namespace tb::service

#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/UserDefaults.h"
#include "platform/linux/FileUserDefaults.h"

namespace tb {

class ErrorReporter;
class MainQueue;

// The suites of this app under one folder: "standard.json" for the standard suite and
// "<suite>.json" for named ones, with names that aren't plain file names encoded (see
// safeFileStem) so that no suite can write outside the folder.
class FileUserDefaultsProvider final : public UserDefaultsProvider {
  public:
    FileUserDefaultsProvider(std::string folder, MainQueue& queue, ErrorReporter& errors);
    ~FileUserDefaultsProvider() override;

    FileUserDefaults& standard() override;
    FileUserDefaults& suite(const std::string& name) override;

    // The file a suite is kept in.
    std::string pathForSuite(const std::string& name) const;

  private:
    FileUserDefaults& open(std::unique_ptr<FileUserDefaults>& slot, const std::string& path);

    std::string folder_;
    MainQueue& queue_;
    ErrorReporter& errors_;
    std::unique_ptr<FileUserDefaults> standard_;
    std::map<std::string, std::unique_ptr<FileUserDefaults>> suites_;
};

}  // namespace tb

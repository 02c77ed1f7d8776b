#include "platform/linux/FileUserDefaultsProvider.h"

#include "platform/SafeFileName.h"

namespace tb {

namespace {

constexpr const char* kStandardStem = "standard";

}  // namespace

FileUserDefaultsProvider::FileUserDefaultsProvider(std::string folder,
                                                   MainQueue& queue,
                                                   ErrorReporter& errors)
    : folder_(std::move(folder)), queue_(queue), errors_(errors) {}

FileUserDefaultsProvider::~FileUserDefaultsProvider() = default;

FileUserDefaults& FileUserDefaultsProvider::standard() {
    return open(standard_, folder_ + "/" + kStandardStem + ".json");
}

FileUserDefaults& FileUserDefaultsProvider::suite(const std::string& name) {
    return open(suites_[name], pathForSuite(name));
}

std::string FileUserDefaultsProvider::pathForSuite(const std::string& name) const {
    // A suite called "standard" must not share the standard suite's file.
    return folder_ + "/" + safeFileName(name, {kStandardStem}) + ".json";
}

FileUserDefaults& FileUserDefaultsProvider::open(std::unique_ptr<FileUserDefaults>& slot,
                                                 const std::string& path) {
    if (!slot) {
        slot = std::make_unique<FileUserDefaults>(path, queue_, errors_);
    }
    return *slot;
}

}  // namespace tb

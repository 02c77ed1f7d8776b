#include "platform/Paths.h"

#include <filesystem>
#include <system_error>

namespace tb {

Paths Paths::underHome(const std::string& home) {
    const std::filesystem::path root(home);
    return Paths{(root / "documents").string(), (root / "caches").string(),
                 (root / "config").string(), (root / "support").string()};
}

bool Paths::createAll(std::string* reason) const {
    for (const std::string* folder : {&documents, &caches, &config, &support}) {
        std::error_code error;
        std::filesystem::create_directories(*folder, error);
        if (error) {
            if (reason) {
                *reason = "can't create " + *folder + ": " + error.message();
            }
            return false;
        }
        std::filesystem::permissions(*folder, std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::replace, error);
    }
    return true;
}

}  // namespace tb

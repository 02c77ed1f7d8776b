#include "SocialTokensFile.h"

#include <cstdio>

#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include "platform/Paths.h"
#include "platform/linux/AtomicFile.h"

namespace tb {

std::string SocialTokensFile::pathIn(const Paths& paths) {
    return paths.support + "/social-tokens.json";
}

bool SocialTokensFile::remember(const std::string& path,
                                const Account& account,
                                std::string& reason) {
    // A file that can't be read or isn't an object holds nothing worth keeping.
    nlohmann::json document = nlohmann::json::object();
    std::string contents;
    if (readWholeFile(path, contents, nullptr) == FileRead::Read) {
        auto parsed = nlohmann::json::parse(contents, nullptr, false);
        if (parsed.is_object()) {
            document = std::move(parsed);
        }
    }
    nlohmann::json entry = {{"token", account.token}};
    if (account.id) {
        entry["id"] = *account.id;
    }
    if (account.secret) {
        entry["secret"] = *account.secret;
    }
    if (account.email) {
        entry["email"] = *account.email;
    }
    document[account.network] = std::move(entry);
    return writeFileAtomically(path, document.dump(2), S_IRUSR | S_IWUSR, &reason);
}

void SocialTokensFile::forgetAll(const std::string& path) {
    std::remove(path.c_str());
}

}  // namespace tb

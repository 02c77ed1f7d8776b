#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tb {

class KeychainStore;

// The account and password the listener keeps for the service's web site, shared with the
// browser where the platform offers that. On Linux they are one entry of the keychain store,
// under a key of their own for the web host. Errors are only printed.
class SharedWebCredentialsHelper {
  public:
    using CredentialsBlock = std::function<void(const std::optional<std::string>& account,
                                                const std::optional<std::string>& password)>;

    SharedWebCredentialsHelper(KeychainStore& store, std::string webHost);

    static SharedWebCredentialsHelper& sharedInstance();

    // Hands the first saved account and password to the block (nothing when none is saved).
    void checkSafariCredentials(const CredentialsBlock& block);
    void saveCredentials(const std::string& account, const std::string& password);
    void removeCredentials(const std::string& account);

  private:
    std::string key() const;

    KeychainStore& store_;
    std::string webHost_;
};

}  // namespace tb

#pragma once

#include <mutex>
#include <string>

#include "platform/KeychainStore.h"

namespace tb {

// The keychain in the desktop's Secret Service (through libsecret): one item per entry in
// the default collection, found by the attributes "service" (the store identity) and
// "account" (the key). Values are bytes.
//
// It never waits on a person: every call gives up after its time-out (an unlock prompt
// nobody answers, a service that hangs) and then fails as a locked keychain would. Call
// probe() before relying on it. Safe from any thread; calls are taken one at a time.
class SecretServiceKeychainStore final : public KeychainStore {
  public:
    explicit SecretServiceKeychainStore(std::string identity, double timeoutSeconds = 5.0);

    // True when a session bus is configured, the service answers, its default collection
    // exists and is unlocked, and a probe entry can be written, read back and deleted, all
    // within `timeoutSeconds`. Never prompts: a locked collection is simply unavailable.
    // `reason` says why not.
    bool probe(double timeoutSeconds, std::string* reason = nullptr);

    std::optional<std::string> dataForKey(const std::string& key) override;
    bool setData(const std::string& key, const std::string& data) override;
    bool removeObjectForKey(const std::string& key) override;
    std::vector<std::string> allKeys() override;

  private:
    bool defaultCollectionIsOpen(double timeoutSeconds, std::string* reason);
    std::optional<std::string> lookup(const std::string& key,
                                      double timeoutSeconds,
                                      std::string* reason);
    bool store(const std::string& key,
               const std::string& data,
               double timeoutSeconds,
               std::string* reason);
    bool clear(const std::string& key, double timeoutSeconds, std::string* reason);

    std::string identity_;
    double timeoutSeconds_;
    std::mutex mutex_;
};

}  // namespace tb

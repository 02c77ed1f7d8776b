#include "platform/linux/SecretServiceKeychainStore.h"

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <optional>
#include <thread>

#include <libsecret/secret.h>

#include "platform/Log.h"
#include "platform/Utf8.h"

namespace tb {

namespace {

constexpr const char* kProbeKey = "tunebrook.probe";
constexpr const char* kSecretsBusName = "org.freedesktop.secrets";

const SecretSchema* keychainSchema() {
    static const SecretSchema schema = [] {
        SecretSchema made{};
        made.name = "com.tunebrook.Keychain";
        made.flags = SECRET_SCHEMA_NONE;
        made.attributes[0] = {"service", SECRET_SCHEMA_ATTRIBUTE_STRING};
        made.attributes[1] = {"account", SECRET_SCHEMA_ATTRIBUTE_STRING};
        return made;
    }();
    return &schema;
}

// A GCancellable that cancels itself when its time is up, so that a libsecret call blocked
// on a prompt or a silent service returns with G_IO_ERROR_CANCELLED.
class Deadline {
  public:
    explicit Deadline(double seconds) : cancellable_(g_cancellable_new()) {
        watcher_ = std::thread([this, seconds] {
            std::unique_lock lock(mutex_);
            if (!done_.wait_for(lock, std::chrono::duration<double>(seconds),
                                [this] { return finished_; })) {
                g_cancellable_cancel(cancellable_);
            }
        });
    }
    ~Deadline() {
        {
            std::lock_guard lock(mutex_);
            finished_ = true;
        }
        done_.notify_one();
        watcher_.join();
        g_object_unref(cancellable_);
    }
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

    GCancellable* cancellable() const { return cancellable_; }

  private:
    GCancellable* cancellable_;
    std::mutex mutex_;
    std::condition_variable done_;
    bool finished_ = false;
    std::thread watcher_;
};

// Takes a GError, giving its message as the reason; true when there was one.
bool failed(GError* error, std::string* reason) {
    if (!error) {
        return false;
    }
    if (reason) {
        *reason = error->message ? error->message : "unknown error";
    }
    g_error_free(error);
    return true;
}

int milliseconds(double seconds) {
    return static_cast<int>(seconds * 1000);
}

// The "account" attribute of one item, read from its D-Bus properties.
std::optional<std::string> accountOfItem(GDBusConnection* bus,
                                         const gchar* path,
                                         GCancellable* cancellable) {
    GError* error = nullptr;
    GVariant* reply = g_dbus_connection_call_sync(
        bus, kSecretsBusName, path, "org.freedesktop.DBus.Properties", "Get",
        g_variant_new("(ss)", "org.freedesktop.Secret.Item", "Attributes"), G_VARIANT_TYPE("(v)"),
        G_DBUS_CALL_FLAGS_NONE, -1, cancellable, &error);
    if (failed(error, nullptr)) {
        return std::nullopt;
    }
    GVariant* boxed = g_variant_get_child_value(reply, 0);
    GVariant* attributes = g_variant_get_variant(boxed);
    std::optional<std::string> account;
    const gchar* value = nullptr;
    if (g_variant_is_of_type(attributes, G_VARIANT_TYPE("a{ss}")) &&
        g_variant_lookup(attributes, "account", "&s", &value)) {
        account = value;
    }
    g_variant_unref(attributes);
    g_variant_unref(boxed);
    g_variant_unref(reply);
    return account;
}

std::string labelFor(const std::string& identity, const std::string& key) {
    return "Tunebrook " + identity + ": " + key;
}

}  // namespace

SecretServiceKeychainStore::SecretServiceKeychainStore(std::string identity, double timeoutSeconds)
    : identity_(std::move(identity)), timeoutSeconds_(timeoutSeconds) {}

bool SecretServiceKeychainStore::probe(double timeoutSeconds, std::string* reason) {
    const char* bus = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (!bus || !*bus) {
        // Without an address GLib would try to start a bus of its own; there is none to use.
        if (reason) {
            *reason = "no session bus";
        }
        return false;
    }
    std::lock_guard lock(mutex_);
    if (!defaultCollectionIsOpen(timeoutSeconds, reason)) {
        return false;
    }
    const std::string sample = std::string("probe\0bytes", 11);
    if (!store(kProbeKey, sample, timeoutSeconds, reason)) {
        return false;
    }
    const auto read = lookup(kProbeKey, timeoutSeconds, reason);
    const bool cleared = clear(kProbeKey, timeoutSeconds, reason);
    if (read != sample) {
        if (reason && read) {
            *reason = "the probe entry read back differently";
        }
        return false;
    }
    return cleared;
}

std::optional<std::string> SecretServiceKeychainStore::dataForKey(const std::string& key) {
    if (!isValidUtf8(key)) {
        return std::nullopt;
    }
    std::lock_guard lock(mutex_);
    std::string reason;
    auto data = lookup(key, timeoutSeconds_, &reason);
    if (!data && !reason.empty()) {
        logLine("[Keychain] can't read " + key + " of " + identity_ + ": " + reason);
    }
    return data;
}

bool SecretServiceKeychainStore::setData(const std::string& key, const std::string& data) {
    if (!isValidUtf8(key)) {
        return false;
    }
    std::lock_guard lock(mutex_);
    std::string reason;
    if (!store(key, data, timeoutSeconds_, &reason)) {
        logLine("[Keychain] can't write " + key + " of " + identity_ + ": " + reason);
        return false;
    }
    return true;
}

bool SecretServiceKeychainStore::removeObjectForKey(const std::string& key) {
    if (!isValidUtf8(key)) {
        return true;  // no such key can have been stored
    }
    std::lock_guard lock(mutex_);
    std::string reason;
    if (!clear(key, timeoutSeconds_, &reason)) {
        logLine("[Keychain] can't remove " + key + " of " + identity_ + ": " + reason);
        return false;
    }
    return true;
}

// Listed over D-Bus itself rather than through libsecret's search, which builds a proxy
// object per item (and loses memory in GIO doing so) only for its attributes.
std::vector<std::string> SecretServiceKeychainStore::allKeys() {
    std::lock_guard lock(mutex_);
    Deadline deadline(timeoutSeconds_);
    GError* error = nullptr;
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, deadline.cancellable(), &error);
    std::string reason;
    if (failed(error, &reason)) {
        logLine("[Keychain] can't list " + identity_ + ": " + reason);
        return {};
    }
    GVariantBuilder attributes;
    g_variant_builder_init(&attributes, G_VARIANT_TYPE("a{ss}"));
    g_variant_builder_add(&attributes, "{ss}", "xdg:schema", keychainSchema()->name);
    g_variant_builder_add(&attributes, "{ss}", "service", identity_.c_str());
    GVariant* found = g_dbus_connection_call_sync(
        bus, kSecretsBusName, "/org/freedesktop/secrets", "org.freedesktop.Secret.Service",
        "SearchItems", g_variant_new("(a{ss})", &attributes), G_VARIANT_TYPE("(aoao)"),
        G_DBUS_CALL_FLAGS_NONE, milliseconds(timeoutSeconds_), deadline.cancellable(), &error);
    std::vector<std::string> keys;
    if (failed(error, &reason)) {
        logLine("[Keychain] can't list " + identity_ + ": " + reason);
    } else {
        // Unlocked items first, then locked ones: attributes are public either way.
        for (int group = 0; group < 2; ++group) {
            GVariant* paths = g_variant_get_child_value(found, group);
            GVariantIter iter;
            g_variant_iter_init(&iter, paths);
            const gchar* path = nullptr;
            while (g_variant_iter_next(&iter, "&o", &path)) {
                auto account = accountOfItem(bus, path, deadline.cancellable());
                if (account && *account != kProbeKey) {
                    keys.push_back(std::move(*account));
                }
            }
            g_variant_unref(paths);
        }
        g_variant_unref(found);
    }
    g_object_unref(bus);
    return keys;
}

// Looks the default collection up without unlocking it: a locked one would need a person.
bool SecretServiceKeychainStore::defaultCollectionIsOpen(double timeoutSeconds,
                                                         std::string* reason) {
    Deadline deadline(timeoutSeconds);
    GError* error = nullptr;
    SecretService* service =
        secret_service_get_sync(SECRET_SERVICE_NONE, deadline.cancellable(), &error);
    if (failed(error, reason) || !service) {
        return false;
    }
    SecretCollection* collection = secret_collection_for_alias_sync(
        service, SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, deadline.cancellable(), &error);
    g_object_unref(service);
    if (failed(error, reason)) {
        return false;
    }
    if (!collection) {
        if (reason) {
            *reason = "no default collection";
        }
        return false;
    }
    const bool locked = secret_collection_get_locked(collection);
    g_object_unref(collection);
    if (locked && reason) {
        *reason = "the default collection is locked";
    }
    return !locked;
}

std::optional<std::string> SecretServiceKeychainStore::lookup(const std::string& key,
                                                              double timeoutSeconds,
                                                              std::string* reason) {
    Deadline deadline(timeoutSeconds);
    GError* error = nullptr;
    SecretValue* value = secret_password_lookup_binary_sync(
        keychainSchema(), deadline.cancellable(), &error, "service", identity_.c_str(), "account",
        key.c_str(), nullptr);
    if (failed(error, reason) || !value) {
        return std::nullopt;
    }
    gsize length = 0;
    const gchar* bytes = secret_value_get(value, &length);
    std::string data(bytes, length);
    secret_value_unref(value);
    return data;
}

bool SecretServiceKeychainStore::store(const std::string& key,
                                       const std::string& data,
                                       double timeoutSeconds,
                                       std::string* reason) {
    Deadline deadline(timeoutSeconds);
    GError* error = nullptr;
    SecretValue* value =
        secret_value_new(data.data(), static_cast<gssize>(data.size()), "application/octet-stream");
    const gboolean stored = secret_password_store_binary_sync(
        keychainSchema(), SECRET_COLLECTION_DEFAULT, labelFor(identity_, key).c_str(), value,
        deadline.cancellable(), &error, "service", identity_.c_str(), "account", key.c_str(),
        nullptr);
    secret_value_unref(value);
    return !failed(error, reason) && stored;
}

bool SecretServiceKeychainStore::clear(const std::string& key,
                                       double timeoutSeconds,
                                       std::string* reason) {
    Deadline deadline(timeoutSeconds);
    GError* error = nullptr;
    // False without an error only means there was nothing to remove.
    secret_password_clear_sync(keychainSchema(), deadline.cancellable(), &error, "service",
                               identity_.c_str(), "account", key.c_str(), nullptr);
    return !failed(error, reason);
}

}  // namespace tb

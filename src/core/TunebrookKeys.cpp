#include "core/TunebrookKeys.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>

#include <nlohmann/json.hpp>

#include "core/URLComponents.h"
#include "platform/AppPorts.h"
#include "platform/Fatal.h"
#include "platform/JsonLimits.h"

namespace tb {

namespace {

constexpr std::array<std::string_view, 25> kRoles = {
    "tunebrookConsumerKey",
    "tunebrookConsumerSecret",
    "wsUrlLive",
    "wsUrlDev",
    "embraceKey",
    "bugsnagKey",
    "comscoreId",
    "comscoreSecret",
    "twitterConsumerKey",
    "twitterConsumerSecret",
    "oneSignalLiveKey",
    "zendeskAppId",
    "zendeskClientId",
    "zendeskUrl",
    "googleClientId",
    "appsFlyerKey",
    "appleAppIdWithoutId",
    "mixpanelToken",
    "mopubBannerId",
    "mopubNativeAdId",
    "mopub300x250Id",
    "mopubInterstitialId",
    "mopubSoundOnInterstitialId",
    "tapJoyKey",
    "fyberAppId",
};

// The service hosts must be addresses the transport can reach.
constexpr std::array<std::string_view, 2> kServiceUrlRoles = {"wsUrlLive", "wsUrlDev"};

// A keys file is a few kilobytes; anything much larger is not one.
constexpr std::uintmax_t kMaxFileSize = 1 << 20;

std::string quotedList(const std::vector<std::string>& names) {
    std::string text;
    for (const auto& name : names) {
        text += (text.empty() ? "\"" : ", \"") + name + "\"";
    }
    return text;
}

bool isServiceUrl(const std::string& text) {
    const auto parts = URLComponents::parse(text);
    return parts && (parts->scheme == "http" || parts->scheme == "https") && !parts->host.empty();
}

}  // namespace

TunebrookKeys::TunebrookKeys(const std::string& path) : path_(path) {
    load();
}

std::string TunebrookKeys::pathFor(const AppOptions& options) {
    if (!options.keysFile.empty()) {
        return options.keysFile;
    }
    return (std::filesystem::path(options.paths.config) / "keys.json").string();
}

std::vector<std::string> TunebrookKeys::roles() {
    return {kRoles.begin(), kRoles.end()};
}

const std::string& TunebrookKeys::value(const std::string& role) const {
    if (error_) {
        TB_FATAL("TunebrookKeys: no keys (" + error_->message + ")");
    }
    const auto found = values_.find(role);
    if (found == values_.end()) {
        TB_FATAL("TunebrookKeys: unknown role " + role);
    }
    return found->second;
}

void TunebrookKeys::load() {
    std::error_code sizeError;
    const auto size = std::filesystem::file_size(path_, sizeError);
    if (sizeError) {
        fail(kFileUnreadable, "can't be read (" + sizeError.message() + ")");
        return;
    }
    if (size > kMaxFileSize) {
        fail(kFileMalformed, "is too large to be a keys file");
        return;
    }
    std::ifstream file(path_, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    if (!file) {
        fail(kFileUnreadable, "can't be read");
        return;
    }
    const std::string content = text.str();
    const auto json = jsonNestingWithin(content)
                          ? nlohmann::json::parse(content, nullptr, false)
                          : nlohmann::json(nlohmann::json::value_t::discarded);
    if (!json.is_object()) {
        fail(kFileMalformed, "is not a JSON object of roles");
        return;
    }

    std::vector<std::string> missing;
    std::vector<std::string> notText;
    for (const auto role : kRoles) {
        const auto found = json.find(role);
        if (found == json.end() ||
            (found->is_string() && found->get_ref<const std::string&>().empty())) {
            missing.emplace_back(role);
        } else if (!found->is_string()) {
            notText.emplace_back(role);
        } else {
            values_.emplace(role, found->get<std::string>());
        }
    }
    if (!missing.empty()) {
        fail(kRoleMissing,
             std::string("has no value for the role") + (missing.size() > 1 ? "s " : " ") +
                 quotedList(missing),
             quotedList(missing));
        return;
    }
    if (!notText.empty()) {
        fail(kRoleInvalid, "has a value that is not text for " + quotedList(notText),
             quotedList(notText));
        return;
    }
    for (const auto role : kServiceUrlRoles) {
        const std::string name(role);
        if (!isServiceUrl(values_[name])) {
            fail(kRoleInvalid, "has no http(s) address for \"" + name + "\"", quotedList({name}));
            return;
        }
    }
}

void TunebrookKeys::fail(int code, const std::string& what, const std::string& roles) {
    values_.clear();
    Error error;
    error.domain = kErrorDomain;
    error.code = code;
    error.message = "keys file " + path_ + " " + what;
    error.userInfo["file"] = path_;
    if (!roles.empty()) {
        error.userInfo["roles"] = roles;
    }
    error_ = std::move(error);
}

}  // namespace tb

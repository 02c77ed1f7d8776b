// Sign-up, the identity check and the listener's record, of TBUserManager.

#include <nlohmann/json.hpp>

#include "accounts/TBCredentials.h"
#include "accounts/TBUserManager.h"
#include "api/TBFailureInfo.h"
#include "api/TBXAuthClientManager.h"
#include "core/TBConstants.h"
#include "core/TBLocalization.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "platform/ErrorReporter.h"
#include "platform/ExternalSdks.h"
#include "platform/JSON.h"

namespace tb {

namespace {

using json = nlohmann::json;

std::set<std::string> idSet(const JSON& ids) {
    std::set<std::string> result;
    for (const auto& id : ids.arrayValue()) {
        if (id.isString() || id.isNumber()) {
            result.insert(id.stringValue());
        }
    }
    return result;
}

std::vector<ItemPtr> highlightsFrom(const JSON& pinned) {
    std::vector<ItemPtr> items;
    for (const auto& entry : pinned.arrayValue()) {
        auto item = entry["type"].stringValue() == "playlist" ? Item::parsePlaylistFrom(entry)
                                                              : Item::parseItemFrom(entry, true);
        if (item) {
            items.push_back(std::move(item));
        }
    }
    return items;
}

// The field errors of a refused sign-up, every text of every field, as one message.
std::string joinedFieldErrors(const JSON& errors) {
    std::string message;
    for (const auto& [field, texts] : errors.dictionaryValue()) {
        const auto list = texts.isArray() ? texts.arrayValue() : std::vector<JSON>{texts};
        for (const auto& text : list) {
            const auto value = text.stringValue();
            if (!value.empty()) {
                message += (message.empty() ? "" : ".  ") + value;
            }
        }
    }
    return message;
}

}  // namespace

// ---- Sign-up and the identity check ---------------------------------------------------

void TBUserManager::registerUser(const std::string& email,
                                 const std::string& artistName,
                                 const std::string& password,
                                 TBLoginSuccessBlock successBlock,
                                 TBLoginFailureBlock failureBlock,
                                 TBLoginTimeoutBlock timeoutBlock) {
    json parameters = {{"email", email},
                       {"artist_name", artistName},
                       {"password", password},
                       {"password2", password}};
    if (empty(email) || empty(password)) {
        reportEmptyCredentials(
            "Empty username or password during signup",
            TBConstants::TBCrashlyticsErrorCodes().emptyUsernamePwSignupCredentials, parameters);
        failWithoutAnswer(failureBlock);
        return;
    }
    addDeviceFields(parameters);
    // The new account is stored as an email login would store it.
    const json asLogin = {{"x_auth_username", email}, {"x_auth_password", password}};
    auto& client = clients_.client();
    client.setCustomTimeout(kRegisterTimeout);
    std::weak_ptr<bool> alive = alive_;
    client.POST(
        client.baseURL() + "user/register", parameters,
        [this, alive, asLogin, successBlock, failureBlock](AFHTTPRequestOperation&,
                                                           const json& responseObject) {
            if (alive.expired()) {
                return;
            }
            clients_.client().resetTimeout();
            loginSucceeded(asLogin, responseObject, false, successBlock, failureBlock);
        },
        [this, alive, failureBlock, timeoutBlock](AFHTTPRequestOperation& operation,
                                                  const Error& error) {
            if (alive.expired()) {
                return;
            }
            clients_.client().resetTimeout();
            if (error.code == URLError::kTimedOut && timeoutBlock) {
                timeoutBlock();
                return;
            }
            std::string message =
                joinedFieldErrors(JSON::parse(operation.responseString())["errors"]);
            if (message.empty()) {
                message = TBLocalization::localizedString("generic_api_error");
            }
            if (failureBlock) {
                failureBlock(operation.statusCode(), message, {});
            }
        });
}

void TBUserManager::checkExistenceOfEmail(const std::string& email,
                                          const std::string& slug,
                                          std::function<void(bool taken)> successBlock,
                                          TBFailureBlock failureBlock) {
    auto& client = clients_.client();
    client.GET(
        client.baseURL() + "identity_check", {{"email", email}, {"slug", slug}},
        [successBlock](AFHTTPRequestOperation&, const json& responseObject) {
            if (successBlock) {
                successBlock(JSON(responseObject)["taken"].boolValue());
            }
        },
        [failureBlock](AFHTTPRequestOperation& operation, const Error& error) {
            if (failureBlock) {
                failureBlock(TBFailureInfo::of(operation, error));
            }
        });
}

// ---- The listener's record ------------------------------------------------------------

void TBUserManager::getUserData(TBJSONSuccess successBlock, TBFailureBlock failureBlock) {
    std::weak_ptr<bool> alive = alive_;
    requestToAuthenticatedAPI(
        clients_.client().baseURL() + "user", "GET",
        [this, alive, successBlock](const JSON& response) {
            if (!alive.expired()) {
                readUserData(response);
            }
            if (successBlock) {
                successBlock(response);
            }
        },
        std::move(failureBlock));
}

void TBUserManager::readUserData(const JSON& response) {
    if (!response.isDictionary()) {
        return;
    }
    credentials_.setFavoriteMusic(idSet(response["favorite_music"]));
    credentials_.setFavoritePlaylists(idSet(response["favorite_playlists"]));
    credentials_.setUserPlaylists(idSet(response["playlists"]));
    credentials_.setFollowingArtists(idSet(response["following"]));
    credentials_.setReups(idSet(response["reups"]));
    credentials_.setHighlights(highlightsFrom(response["pinned"]));

    if (const auto slug = response["url_slug"].string(); slug && !slug->empty()) {
        credentials_.saveUserUrlSlug(slug);
    }
    if (const auto name = response["name"].string(); name && !name->empty()) {
        credentials_.saveUserScreenName(name);
    }
    if (const auto email = response["email"].string(); email && !email->empty()) {
        credentials_.saveUserEmail(email);
    }
    if (response["new_feed_items"].exists()) {
        credentials_.saveNewFeedItems(response["new_feed_items"].int64Value());
    }

    if (auto artist = Artist::parseFrom(response)) {
        credentials_.saveArtist(artist);
        sdks_.call("MixpanelTracker.setUserProperties", {{"id", artist->artistId.value_or("")},
                                                         {"urlSlug", artist->urlSlug.value_or("")},
                                                         {"name", artist->name.value_or("")}});
    }
}

}  // namespace tb

// One item, the playlist categories and the availability check of TBDataManager.

#include <nlohmann/json.hpp>

#include "api/TBCataloguePaths.h"
#include "api/TBDataManager.h"
#include "api/TBFailureInfo.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "platform/JSON.h"

namespace tb {

namespace {

using json = nlohmann::json;

constexpr const char* kFieldErrorsJoin = ".  ";

// The item of an info read: the first of the mapped rows, or else "results" read as one
// dictionary; restricted items are kept.
ItemPtr infoItemOf(const std::vector<ItemPtr>& items, const JSON& response, ObjectContext* shared) {
    if (!items.empty()) {
        return items.front();
    }
    const JSON results = response["results"];
    if (!results.isDictionary()) {
        return nullptr;
    }
    const auto mapped =
        TBDataManager::itemsFromResult(JSON(json::array({results.raw()})), false, shared);
    return mapped.empty() ? nullptr : mapped.front();
}

TBItemsSuccess infoItemSuccess(TBDataManager& manager, TBItemSuccess success) {
    if (!success) {
        return nullptr;
    }
    return [&manager, success = std::move(success)](const std::vector<ItemPtr>& items,
                                                    const std::optional<std::string>&,
                                                    const JSON& response) {
        success(infoItemOf(items, response, manager.managedObjectContext().get()));
    };
}

// The service's words for a field error: "errors" (its "keyNotFound" part, when it has
// one), the texts of the first field joined; "" when there are none.
std::string fieldErrorMessage(const TBFailureInfo& info) {
    const JSON errors = info.responseJSON()["errors"];
    const JSON fields = errors["keyNotFound"].exists() ? errors["keyNotFound"] : errors;
    const auto entries = fields.dictionaryValue();
    if (entries.empty()) {
        return "";
    }
    const JSON& texts = entries.begin()->second;
    if (!texts.isArray()) {
        return texts.stringValue();
    }
    std::string message;
    for (const JSON& text : texts.arrayValue()) {
        if (!message.empty()) {
            message += kFieldErrorsJoin;
        }
        message += text.stringValue();
    }
    return message;
}

std::string joined(const std::vector<std::string>& parts, const std::string& separator) {
    std::string text;
    for (const auto& part : parts) {
        if (!text.empty()) {
            text += separator;
        }
        text += part;
    }
    return text;
}

}  // namespace

// ---- One item ------------------------------------------------------------------------

void TBDataManager::getAlbumInfoWithIdentifier(const std::string& identifier,
                                               const nlohmann::json& params,
                                               TBItemSuccess success,
                                               TBFailureBlock failure) {
    dataForService(TBCataloguePaths::musicInfoPath("album", identifier), params, false,
                   infoItemSuccess(*this, std::move(success)), std::move(failure));
}

void TBDataManager::getSongInfoWithIdentifier(const std::string& identifier,
                                              const nlohmann::json& params,
                                              TBItemSuccess success,
                                              TBFailureBlock failure) {
    dataForService(TBCataloguePaths::musicInfoPath("song", identifier), params, false,
                   infoItemSuccess(*this, std::move(success)), std::move(failure));
}

void TBDataManager::getPlaylistInfo(const std::string& identifier,
                                    const nlohmann::json& params,
                                    TBItemSuccess success,
                                    TBFailureBlock failure) {
    dataForService("playlist/" + TBCataloguePaths::pathOf(identifier), params, false,
                   infoItemSuccess(*this, std::move(success)), std::move(failure));
}

void TBDataManager::getPlaylistCategoriesWithSuccess(TBJSONSuccess success,
                                                     TBFailureBlock failure) {
    answerForService("GET", "tags/page/1", json{{"include_playlists", "no"}},
                     success ? [success](const JSON& response) { success(response["results"]); }
                             : TBJSONSuccess(),
                     std::move(failure));
}

// ---- Account services ----------------------------------------------------------------

void TBDataManager::forgotPassword(const std::string& email,
                                   std::function<void()> success,
                                   TBMessageFailure failure) {
    TBFailureBlock failed;
    if (failure) {
        failed = [failure](const TBFailureInfo& info) { failure(fieldErrorMessage(info)); };
    }
    answerForService("POST", "user/forgot-password", json{{"email", email}},
                     success ? [success](const JSON&) { success(); } : TBJSONSuccess(),
                     std::move(failed));
}

void TBDataManager::checkMusicAvailability(const std::vector<std::string>& ids,
                                           TBIdsSuccess success,
                                           TBFailureBlock failure) {
    TBJSONSuccess answer;
    if (success) {
        answer = [success, failure](const JSON& response) {
            if (!response.isArray()) {
                if (failure) {
                    failure(TBFailureInfo::emptyDictionary());
                }
                return;
            }
            std::vector<std::string> gone;
            for (const JSON& id : response.arrayValue()) {
                if (id.isString() || id.isNumber()) {
                    gone.push_back(id.stringValue());
                }
            }
            success(gone);
        };
    }
    answerForService("POST", "music/status", json{{"music_id", joined(ids, ",")}},
                     std::move(answer), std::move(failure));
}

}  // namespace tb

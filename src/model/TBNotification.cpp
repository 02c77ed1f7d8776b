#include "model/TBNotification.h"

#include <utility>

#include "model/DateText.h"
#include "model/Item.h"
#include "platform/JSON.h"

namespace tb {

namespace {

TBNotificationVerb verbOf(const JSON& json) {
    static constexpr std::pair<const char*, TBNotificationVerb> kVerbs[] = {
        {"favorite", TBNotificationVerb::favorite},
        {"follow", TBNotificationVerb::follow},
        {"reup", TBNotificationVerb::reup},
        {"playlisted", TBNotificationVerb::playlisted},
        {"playlistfavorite", TBNotificationVerb::playlistFavorite},
        {"playlist_updated", TBNotificationVerb::playlistUpdated},
        {"comment", TBNotificationVerb::comment},
    };
    const std::string verb = json["verb"].stringValue();
    for (const auto& [name, value] : kVerbs) {
        if (verb != name) {
            continue;
        }
        const JSON parent = json["extra_context"]["parent"];
        if (value == TBNotificationVerb::comment && parent.exists() && !parent.isNull()) {
            return TBNotificationVerb::reply;
        }
        return value;
    }
    return TBNotificationVerb::unknown;
}

// The music a notification points at: a playlist through the playlist mapper, anything else
// through the song mapper, restricted music included (the notification happened anyway).
ItemPtr musicOf(const JSON& json, ObjectContext* shared) {
    if (json["type"].stringValue() == "playlist") {
        return Item::parsePlaylistFrom(json, shared);
    }
    return Item::parseItemFrom(json, false, shared);
}

void addCommentEntry(std::map<std::string, std::string>& entries,
                     const JSON& context,
                     const char* key) {
    const JSON value = context[key];
    if (value.isString() || value.isNumber() || value.isBool()) {
        entries[key] = value.stringValue();
    } else if (value.isArray() || value.isDictionary()) {
        entries[key] = value.dump();
    }
}

}  // namespace

std::optional<TBNotification> TBNotification::fromJSON(const JSON& json, ObjectContext* shared) {
    const TBNotificationVerb verb = verbOf(json);
    if (verb == TBNotificationVerb::unknown) {
        return std::nullopt;
    }
    TBNotification notification;
    notification.verb = verb;
    if (const auto createdAt = json["created_at"].string()) {
        notification.createdAt = DateText::parseMicrosecondTimestamp(*createdAt);
    }
    notification.actor = Artist::parseFrom(json["actor"]);
    const JSON seen = json["seen"];
    if (seen.exists() && !seen.isNull()) {
        notification.seen = seen.boolValue();
    }

    switch (verb) {
        case TBNotificationVerb::favorite:
        case TBNotificationVerb::reup:
        case TBNotificationVerb::playlistFavorite:
            notification.object = musicOf(json["object"], shared);
            break;
        case TBNotificationVerb::playlisted:
            notification.object = musicOf(json["object"], shared);
            notification.target = musicOf(json["target"], shared);
            break;
        case TBNotificationVerb::playlistUpdated:
            notification.target = musicOf(json["target"], shared);
            break;
        case TBNotificationVerb::comment:
        case TBNotificationVerb::reply: {
            const JSON context = json["extra_context"];
            addCommentEntry(notification.commentDict, context, "comment");
            addCommentEntry(notification.commentDict, context, "parent");
            notification.object = musicOf(json["object"], shared);
            break;
        }
        default:  // a follow carries only its actor
            break;
    }
    return notification;
}

}  // namespace tb

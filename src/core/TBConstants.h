#pragma once

#include "core/TBAPIErrorCodes.h"
#include "core/TBAnalyticsEvents.h"
#include "core/TBAnalyticsParameters.h"
#include "core/TBArtistConstants.h"
#include "core/TBCachedItemConstants.h"
#include "core/TBColors.h"
#include "core/TBCrashlyticsErrorCodes.h"
#include "core/TBFonts.h"
#include "core/TBGeneralConstants.h"
#include "core/TBGlobalNotifications.h"
#include "core/TBGlobalNotificationsKeys.h"
#include "core/TBGroupIdsContants.h"
#include "core/TBItemConstants.h"
#include "core/TBKeychainKeys.h"
#include "core/TBLinks.h"
#include "core/TBShortcutItemTypes.h"
#include "core/TBUserDefaultKeys.h"

namespace tb {

// The shared strings and numbers, one group each: `TBConstants::Item().playlistImageMaxSize`,
// `TBConstants::TBGlobalNotifications().songChanged`. Each group is a struct of the same name
// in namespace tb (tb::TBKeychainKeys); the accessors return its one constant instance.
// Only the links depend on the build's key store, so they are made once per context.
class TBConstants {
  public:
    static constexpr const ::tb::TBItemConstants& Item() { return kItem; }
    static constexpr const ::tb::TBArtistConstants& Artist() { return kArtist; }
    static constexpr const ::tb::TBColors& Colors() { return kColors; }
    static constexpr const ::tb::TBFonts& Fonts() { return kFonts; }
    static constexpr const ::tb::TBGeneralConstants& General() { return kGeneral; }
    static constexpr const ::tb::TBAPIErrorCodes& TBAPIErrorCodes() { return kAPIErrorCodes; }
    static constexpr const ::tb::TBCrashlyticsErrorCodes& TBCrashlyticsErrorCodes() {
        return kCrashlyticsErrorCodes;
    }
    static constexpr const ::tb::TBAnalyticsEvents& TBAnalyticsEvents() { return kAnalyticsEvents; }
    static constexpr const ::tb::TBAnalyticsParameters& TBAnalyticsParameters() {
        return kAnalyticsParameters;
    }
    static constexpr const ::tb::TBShortcutItemTypes& TBShortcutItemTypes() {
        return kShortcutItemTypes;
    }
    static constexpr const ::tb::TBUserDefaultKeys& TBUserDefaultKeys() { return kUserDefaultKeys; }
    static constexpr const ::tb::TBGlobalNotifications& TBGlobalNotifications() {
        return kGlobalNotifications;
    }
    static constexpr const ::tb::TBGlobalNotificationsKeys& TBGlobalNotificationsKeys() {
        return kGlobalNotificationsKeys;
    }
    static constexpr const ::tb::TBKeychainKeys& TBKeychainKeys() { return kKeychainKeys; }
    static constexpr const ::tb::TBCachedItemConstants& TBCachedItemConstants() {
        return kCachedItemConstants;
    }
    static constexpr const ::tb::TBGroupIdsContants& TBGroupIdsContants() {
        return kGroupIdsContants;
    }

    // The links the app installed.
    static const ::tb::TBLinks& TBLinks();

  private:
    static constexpr ::tb::TBItemConstants kItem{};
    static constexpr ::tb::TBArtistConstants kArtist{};
    static constexpr ::tb::TBColors kColors{};
    static constexpr ::tb::TBFonts kFonts{};
    static constexpr ::tb::TBGeneralConstants kGeneral{};
    static constexpr ::tb::TBAPIErrorCodes kAPIErrorCodes{};
    static constexpr ::tb::TBCrashlyticsErrorCodes kCrashlyticsErrorCodes{};
    static constexpr ::tb::TBAnalyticsEvents kAnalyticsEvents{};
    static constexpr ::tb::TBAnalyticsParameters kAnalyticsParameters{};
    static constexpr ::tb::TBShortcutItemTypes kShortcutItemTypes{};
    static constexpr ::tb::TBUserDefaultKeys kUserDefaultKeys{};
    static constexpr ::tb::TBGlobalNotifications kGlobalNotifications{};
    static constexpr ::tb::TBGlobalNotificationsKeys kGlobalNotificationsKeys{};
    static constexpr ::tb::TBKeychainKeys kKeychainKeys{};
    static constexpr ::tb::TBCachedItemConstants kCachedItemConstants{};
    static constexpr ::tb::TBGroupIdsContants kGroupIdsContants{};
};

}  // namespace tb

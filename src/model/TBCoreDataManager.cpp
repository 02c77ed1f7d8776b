#include "model/TBCoreDataManager.h"

#include <optional>
#include <utility>

#include "core/TBConstants.h"
#include "core/TBLocalization.h"
#include "model/TBDataManagerStore.h"
#include "model/store/ObjectContext.h"
#include "model/store/StoreError.h"
#include "platform/ErrorReporter.h"
#include "platform/MainQueue.h"
#include "platform/SharedInstance.h"
#include "platform/UIHost.h"
#include "platform/UserDefaults.h"

namespace tb {

namespace {

// The alerts wait a second: the policy can run at launch, before anything is on screen.
constexpr double kAlertDelaySeconds = 1.0;

constexpr const char* kRaisedName = "NSInternalInconsistencyException";
constexpr const char* kNoStoreReason =
    "This coordinator has no persistent stores. It cannot perform a save operation.";

struct RaisedFailure {
    std::string name;
    std::string reason;
};

// Saves the context. A save that can't be attempted at all (changes, but no store behind
// the coordinator) is raised; every other failure comes back through `error`.
std::optional<RaisedFailure> saveContext(ObjectContext* context,
                                         Error* error,
                                         const TBCoreDataManager::Changed* named) {
    if (!context) {
        return std::nullopt;
    }
    Error failure;
    if (named ? context->saveChangesOf(*named, &failure) : context->save(&failure)) {
        return std::nullopt;
    }
    const bool noStore =
        failure.domain == StoreError::kDomain && failure.code == StoreError::kNoStore;
    if (noStore) {
        // Without changes there is nothing to write, and so nothing that could fail.
        return context->hasChanges() ? std::optional(RaisedFailure{kRaisedName, kNoStoreReason})
                                     : std::nullopt;
    }
    if (error) {
        *error = std::move(failure);
    }
    return std::nullopt;
}

}  // namespace

TBCoreDataManager::TBCoreDataManager(TBDataManagerStore& store,
                                     UserDefaults& defaults,
                                     ErrorReporter& errors,
                                     UIHost& ui,
                                     MainQueue& queue)
    : store_(store), defaults_(defaults), errors_(errors), ui_(ui), queue_(queue) {}

TBCoreDataManager& TBCoreDataManager::sharedManager() {
    return SharedInstance<TBCoreDataManager>::get();
}

ObjectContext* TBCoreDataManager::context() const {
    return store_.managedObjectContext().get();
}

void TBCoreDataManager::save(Error* error) {
    guardedSave(error, nullptr);
}

void TBCoreDataManager::save(Error* error, const Changed& changed) {
    guardedSave(error, &changed);
}

void TBCoreDataManager::guardedSave(Error* error, const Changed* changed) {
    const auto& codes = TBConstants::TBCrashlyticsErrorCodes();
    const auto raised = saveContext(context(), error, changed);
    // Whether the save came back true is not looked at: only a raised failure is one here.
    if (!raised) {
        if (isFirstSaveAfterError256()) {
            recordEvent(codes.coreDataSaveSucceededAfterError256OnStartup);
        }
        return;
    }
    recordEvent(codes.coreDataSave, {},
                {{"ExceptionName", raised->name}, {"ExceptionReason", raised->reason}});
    if (isFirstSaveAfterError256()) {
        recordEvent(codes.coreDataSaveFailedAfterError256OnStartup);
    }
}

bool TBCoreDataManager::reportingSave(const std::string& label) {
    return reportedSave(label, nullptr);
}

bool TBCoreDataManager::reportingSave(const std::string& label, const Changed& changed) {
    return reportedSave(label, &changed);
}

bool TBCoreDataManager::reportedSave(const std::string& label, const Changed* changed) {
    Error error;
    guardedSave(&error, changed);
    if (error.domain.empty()) {
        return true;
    }
    errors_.recordError(error, {{"Method", label}});
    handleError(error, false);
    return false;
}

void TBCoreDataManager::handleError(const Error& error, bool onStartup) {
    // Once per process, on purpose: a later error of any kind is left alone, even one that
    // would call for a rebuild, so that a store that keeps failing can't loop.
    if (alertShown_) {
        return;
    }
    alertShown_ = true;
    const auto& codes = TBConstants::TBCrashlyticsErrorCodes();
    const bool corruption =
        error.code == StoreError::kCorrupt || error.code == StoreError::kNotADatabase;
    if (onStartup) {
        if (error.code != StoreError::kUnreadable) {
            if (getError256OnStartup()) {
                recordEvent(codes.coreDataOtherErrorOnStartupAfterError256OnStartup,
                            {{"ErrorCode", std::to_string(error.code)}});
            }
            saveError256OnStartup(false);
        } else {
            // Code 256 deletes nothing and shows nothing: the next launch tells whether the
            // fault lasts, through the flag kept in the defaults.
            foundError256OnStartup_ = true;
            recordEvent(getError256OnStartup()
                            ? codes.coreDataError256OnStartupAfterError256OnStartup
                            : codes.coreDataError256OnStartupAfterSuccessfulStartup);
            saveError256OnStartup(true);
        }
        if (corruption) {
            store_.recreateDatabase();
            scheduleAlert(TBLocalization::localizedString("database_error_recreated"));
            return;
        }
    }
    if (error.code == StoreError::kDiskFull) {
        scheduleAlert(TBLocalization::localizedString("database_error_lowstorage"));
    }
}

bool TBCoreDataManager::getError256OnStartup() const {
    return defaults_.boolForKey(TBConstants::TBUserDefaultKeys().foundError256OnStartup);
}

void TBCoreDataManager::saveError256OnStartup(bool found) {
    auto& defaults = defaults_;
    defaults.setBool(TBConstants::TBUserDefaultKeys().foundError256OnStartup, found);
    defaults.synchronize();
}

void TBCoreDataManager::recordEvent(std::int64_t code,
                                    ErrorInfo userInfo,
                                    ErrorInfo additionalInfo) {
    Error event;
    event.domain = TBConstants::TBCrashlyticsErrorCodes().tunebrookErrorDomain;
    event.code = code;
    event.userInfo = std::move(userInfo);
    errors_.recordError(event, additionalInfo);
}

void TBCoreDataManager::scheduleAlert(const std::string& message) {
    UIHost& ui = ui_;
    Alert alert{
        std::nullopt,
        message,
        {AlertAction{TBLocalization::localizedString("ok"), AlertAction::Style::Default, nullptr}}};
    queue_.postAfter(kAlertDelaySeconds,
                     [&ui, alert = std::move(alert)] { ui.presentAlert(alert); });
}

bool TBCoreDataManager::isFirstSaveAfterError256() {
    if (!foundError256OnStartup_ || loggedFirstSaveResultAfterError256OnStartup_) {
        return false;
    }
    loggedFirstSaveResultAfterError256OnStartup_ = true;
    return true;
}

}  // namespace tb

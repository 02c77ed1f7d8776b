#include "model/TBDataManagerStore.h"

#include <ctime>
#include <filesystem>
#include <system_error>

#include "core/TBConstants.h"
#include "model/StoreModel.h"
#include "model/TBCoreDataManager.h"
#include "model/store/ManagedObjectModel.h"
#include "model/store/ObjectContext.h"
#include "model/store/PersistentStoreCoordinator.h"
#include "model/store/StoreError.h"
#include "platform/BackupExclusion.h"
#include "platform/ErrorReporter.h"
#include "platform/Fatal.h"

namespace tb {

namespace {

constexpr const char* kStoreFileName = "CoreData.sqlite";

std::string underlyingErrorOf(const Error& error) {
    const auto found = error.userInfo.find(StoreError::kUnderlyingErrorKey);
    return found == error.userInfo.end() ? std::string() : found->second;
}

// The local date and time as a file name takes it: "2026-11-25-063117".
std::string dateStamp() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[32] = {};
    std::strftime(text, sizeof text, "%Y-%m-%d-%H%M%S", &local);
    return text;
}

}  // namespace

TBDataManagerStore::TBDataManagerStore(std::string documentsDirectory, ErrorReporter& errors)
    : documentsDirectory_(std::move(documentsDirectory)), errors_(errors) {}

TBDataManagerStore::~TBDataManagerStore() = default;

void TBDataManagerStore::startup() {
    managedObjectContext_ = loadManagedObjectContext();
}

const ManagedObjectModel& TBDataManagerStore::loadManagedObjectModel() {
    if (!managedObjectModel_) {
        managedObjectModel_ = std::make_unique<ManagedObjectModel>(StoreModel::merged());
    }
    return *managedObjectModel_;
}

std::shared_ptr<PersistentStoreCoordinator> TBDataManagerStore::loadPersistentStoreCoordinator() {
    if (persistentStoreCoordinator_) {
        return persistentStoreCoordinator_;
    }
    persistentStoreCoordinator_ =
        std::make_shared<PersistentStoreCoordinator>(loadManagedObjectModel());
    Error error;
    if (persistentStoreCoordinator_->addPersistentStore(storePath(), &error)) {
        // A clean opening after one that met code 256: the fault was passing.
        if (policy_ && policy_->getError256OnStartup()) {
            const auto& codes = TBConstants::TBCrashlyticsErrorCodes();
            errors_.recordError(Error{codes.tunebrookErrorDomain,
                                      codes.coreDataNoErrorsOnStartupAfterError256OnStartup,
                                      {},
                                      {}});
            policy_->saveError256OnStartup(false);
        }
    } else {
        errors_.recordError(error, {{"Method", "persistentStoreCoordinator"},
                                    {"UnderlyingException", underlyingErrorOf(error)}});
        if (policy_) {
            policy_->handleError(error, true);
        }
    }
    // After a rebuild this is the new coordinator.
    return persistentStoreCoordinator_;
}

std::shared_ptr<ObjectContext> TBDataManagerStore::loadManagedObjectContext() {
    if (managedObjectContext_) {
        return managedObjectContext_;
    }
    // The context is the only writer of the store and is used on the main queue alone, so
    // its changes always win over the rows, attribute by attribute.
    if (auto coordinator = loadPersistentStoreCoordinator()) {
        managedObjectContext_ = std::make_shared<ObjectContext>(std::move(coordinator));
    }
    // Whether or not the store opened. An open store has all three files, so a missing one
    // is a fault; after a failed opening whatever is there may be broken, and it is left
    // alone: the run goes on without a store rather than stopping at every launch.
    const bool open =
        persistentStoreCoordinator_ && persistentStoreCoordinator_->hasPersistentStore();
    for (const std::string& file : PersistentStoreCoordinator::storeFiles(storePath())) {
        std::error_code ignored;
        if (open ||
            std::filesystem::is_regular_file(std::filesystem::symlink_status(file, ignored))) {
            addSkipBackupAttributeToItemAtURL(file);
        }
    }
    return managedObjectContext_;
}

void TBDataManagerStore::recreateDatabase() {
    const auto& codes = TBConstants::TBCrashlyticsErrorCodes();
    errors_.recordError(Error{codes.tunebrookErrorDomain, codes.databaseRecreated, {}, {}});
    if (persistentStoreCoordinator_) {
        persistentStoreCoordinator_->removePersistentStore();
    }
    keptBrokenStorePath_ =
        PersistentStoreCoordinator::setPersistentStoreAside(storePath(), dateStamp());
    managedObjectContext_.reset();
    persistentStoreCoordinator_.reset();
    managedObjectContext_ = loadManagedObjectContext();
}

std::string TBDataManagerStore::storePath() const {
    return (std::filesystem::path(applicationDocumentsDirectory()) / kStoreFileName).string();
}

bool TBDataManagerStore::addSkipBackupAttributeToItemAtURL(const std::string& path) {
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) {
        TB_FATAL("[[NSFileManager defaultManager] fileExistsAtPath: [URL path]]");
    }
    return excludeFromBackup(path);
}

void TBDataManagerStore::saveManagedObjectContext() {
    if (!managedObjectContext_ || !managedObjectContext_->hasChanges()) {
        return;
    }
    Error error;
    if (!managedObjectContext_->save(&error)) {
        TB_FATAL("Unresolved error " + error.domain + " " + std::to_string(error.code) + ": " +
                 error.message);
    }
}

}  // namespace tb

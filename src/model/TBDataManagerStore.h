#pragma once

#include <memory>
#include <string>

namespace tb {

class ErrorReporter;
class ManagedObjectModel;
class ObjectContext;
class PersistentStoreCoordinator;
class TBCoreDataManager;

// The object store half of TBDataManager: the model, the coordinator and the one context of
// the app. The store is "CoreData.sqlite" in the documents directory, in write-ahead mode
// (its "-wal" and "-shm" beside it). Everything runs on the main queue.
class TBDataManagerStore {
  public:
    TBDataManagerStore(std::string documentsDirectory, ErrorReporter& errors);
    virtual ~TBDataManagerStore();
    TBDataManagerStore(const TBDataManagerStore&) = delete;
    TBDataManagerStore& operator=(const TBDataManagerStore&) = delete;

    // The error policy that judges a failed opening. The policy saves through this store, so
    // the two refer to each other: whoever builds both connects them here, once, before
    // startup. Without a policy a failed opening is recorded and left as it is.
    void setErrorPolicy(TBCoreDataManager* policy) { policy_ = policy; }

    // Opens the store. Called once by the launch, before any other store access.
    void startup();

    // Each builds its object on first use and answers with the same one after that.
    const ManagedObjectModel& loadManagedObjectModel();
    // Adds the store on first use. A store that can't be opened is handed to the error
    // policy (TBCoreDataManager::handleError with onStartup true), which may rebuild it;
    // the answer is the coordinator kept after that, with or without a store behind it.
    std::shared_ptr<PersistentStoreCoordinator> loadPersistentStoreCoordinator();
    // The one context, over the coordinator. Then marks the store's three files as not to
    // be backed up: with the store open, a file that is missing is a fault that stops the
    // process; a store that failed to open may have left any of them missing, or something
    // other than a file in their place, and only its plain files are marked.
    std::shared_ptr<ObjectContext> loadManagedObjectContext();

    // The rebuild: closes the store, keeps the broken file (and its "-wal") beside the new
    // one as "CoreData-broken-<date>.sqlite", removes "-shm", then opens a fresh empty
    // store. The app's rows are gone from the new store; audio files are not touched.
    void recreateDatabase();
    // The kept copy of the store the last rebuild of this run set aside; empty when nothing
    // was rebuilt (or there was no file to keep).
    const std::string& keptBrokenStorePath() const { return keptBrokenStorePath_; }

    std::string applicationDocumentsDirectory() const { return documentsDirectory_; }
    // "<documents>/CoreData.sqlite".
    std::string storePath() const;

    // Marks the file as not to be backed up: the extended attribute
    // "user.xdg.robots.backup" = "false" that backup tools of the desktop honour. The file
    // must exist (a missing one stops the process). False when the file system refuses the
    // attribute.
    bool addSkipBackupAttributeToItemAtURL(const std::string& path);

    // The strict save: a failure stops the process. Nothing in normal flow uses it; the save
    // everybody calls is TBCoreDataManager::save.
    void saveManagedObjectContext();

    // What is kept now; null (nil) before startup, or when nothing could be built.
    const std::shared_ptr<ObjectContext>& managedObjectContext() const {
        return managedObjectContext_;
    }
    const std::shared_ptr<PersistentStoreCoordinator>& persistentStoreCoordinator() const {
        return persistentStoreCoordinator_;
    }
    const ManagedObjectModel* managedObjectModel() const { return managedObjectModel_.get(); }

  private:
    std::string documentsDirectory_;
    ErrorReporter& errors_;
    TBCoreDataManager* policy_ = nullptr;
    std::unique_ptr<ManagedObjectModel> managedObjectModel_;
    std::shared_ptr<PersistentStoreCoordinator> persistentStoreCoordinator_;
    std::shared_ptr<ObjectContext> managedObjectContext_;
    std::string keptBrokenStorePath_;
};

}  // namespace tb

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "model/store/ManagedObjectModel.h"
#include "platform/Error.h"

namespace tb {

class SqliteDatabase;

// The store file of a model. Adding the store opens (or creates) the file, switches it to
// write-ahead logging (its "-wal" and "-shm" files stay beside it), reads its header and
// schema (a torn, truncated or foreign file fails here) and brings its tables up to the model.
// It reads no other page: a healthy open costs the same whatever the store holds.
//
// Durability: commits are synced at checkpoints (synchronous=NORMAL in WAL mode), so a
// process that is killed never loses a save that returned; a power cut may lose the last
// few saves, but never leaves a broken file.
class PersistentStoreCoordinator {
  public:
    explicit PersistentStoreCoordinator(ManagedObjectModel model);
    ~PersistentStoreCoordinator();
    PersistentStoreCoordinator(const PersistentStoreCoordinator&) = delete;
    PersistentStoreCoordinator& operator=(const PersistentStoreCoordinator&) = delete;

    const ManagedObjectModel& managedObjectModel() const { return model_; }

    // Opens the store at `path`. On failure the coordinator stays without a store and the
    // error (see StoreError) says why. Anything other than a plain file in the place of the
    // store or a sidecar (a folder, a symlink, a pipe) fails as a store that can't be read,
    // before SQLite touches it: SQLite would create a symlink's target wherever it points,
    // and block on a pipe.
    bool addPersistentStore(const std::string& path, Error* error);
    bool hasPersistentStore() const { return database_ != nullptr; }
    const std::string& storePath() const { return path_; }
    // Closes the store; the files stay.
    void removePersistentStore();
    // Rebuilds every index of the store from the rows, for a statement that met a broken
    // page: if the page was an index's, the rows are all there and the statement can run
    // again. Tried once per opening; false when the store has no file open, was repaired
    // already, or its rows themselves can't be read. Rows are never removed.
    bool repairIndexes(Error* error);

    // Moves every committed row from "-wal" into the store file itself, so that a copy of
    // that one file is complete. False (and the error) when the store is busy or absent.
    bool checkpoint(Error* error);

    // The store file and its two sidecars: the path, then "-wal", then "-shm".
    static std::vector<std::string> storeFiles(const std::string& path);
    // Removes the three files; a missing one is no error. Close the store first.
    static void destroyPersistentStore(const std::string& path);
    // Moves the store file and its "-wal" (which holds the latest rows) beside it under a
    // name that carries `stamp`, "CoreData-broken-<stamp>.sqlite", and removes "-shm". The
    // answer is the kept store's path, or empty when there was no store file to keep (or it
    // couldn't be moved, and so was removed). Close the store first.
    static std::string setPersistentStoreAside(const std::string& path, const std::string& stamp);

    // For the context: the open connection (or null) and a number that changes whenever the
    // store is added or removed.
    SqliteDatabase* database() const { return database_.get(); }
    std::uint64_t storeGeneration() const { return generation_; }

  private:
    ManagedObjectModel model_;
    std::unique_ptr<SqliteDatabase> database_;
    std::string path_;
    std::uint64_t generation_ = 0;
    bool indexesRepaired_ = false;
};

}  // namespace tb

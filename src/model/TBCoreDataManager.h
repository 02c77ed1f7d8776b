#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/UserInfo.h"

namespace tb {

class ErrorReporter;
class MainQueue;
class ManagedObject;
class ObjectContext;
class TBDataManagerStore;
class UIHost;
class UserDefaults;
struct Error;

// Owns saving and the error policy of the store.
//
// How a save fails. The context's save either works, or comes back false with an error (a
// full disk, a broken file, a busy store): that is an ordinary result, handed to the caller
// through the error out-parameter. One failure is of another kind: a save with changes on a
// coordinator that has no store at all (the store could not be opened at launch). Such a
// save can't even be attempted; it "raises": the guarded save reports it as the exception
// "NSInternalInconsistencyException", and the caller learns nothing, not even through the
// error out-parameter, exactly as a caught exception would leave it.
class TBCoreDataManager {
  public:
    // `defaults` is the standard suite.
    TBCoreDataManager(TBDataManagerStore& store,
                      UserDefaults& defaults,
                      ErrorReporter& errors,
                      UIHost& ui,
                      MainQueue& queue);
    TBCoreDataManager(const TBCoreDataManager&) = delete;
    TBCoreDataManager& operator=(const TBCoreDataManager&) = delete;

    static TBCoreDataManager& sharedManager();

    // The store this saves, and its one context (null before startup or without a store).
    TBDataManagerStore& store() const { return store_; }
    ObjectContext* context() const;

    // The guarded save of the one context; `error` (may be null) receives the error of a
    // save that came back false. No result: a save that came back false still counts as
    // done here, and only a raised failure is reported (see above).
    void save(Error* error);
    // The same guarded save for a writer that names the records it changed (with every
    // insert and delete, they are all that is written; see ObjectContext::saveChangesOf).
    // Its cost doesn't grow with the records held elsewhere, as the plain save's does: the
    // way for writes that come often, such as the player's position every two seconds.
    using Changed = std::vector<std::shared_ptr<ManagedObject>>;
    void save(Error* error, const Changed& changed);

    // The save of the DAO's own writes: a failure is recorded with "Method" = `label` and
    // handed to handleError with onStartup false, so that it can show the low-storage alert
    // but never rebuild the store. True when no error came back.
    bool reportingSave(const std::string& label);
    bool reportingSave(const std::string& label, const Changed& changed);

    // The error policy. Runs at most once per process (alertShown); codes 11 and 259 rebuild
    // the store at launch, 13 tells the listener the device is full, 256 at launch is
    // recorded and remembered across launches.
    void handleError(const Error& error, bool onStartup);

    // The standard user default "foundError256OnStartup": the previous opening of the store
    // ended with code 256. The setter writes it through at once.
    bool getError256OnStartup() const;
    void saveError256OnStartup(bool found);

    bool alertShown() const { return alertShown_; }
    bool foundError256OnStartup() const { return foundError256OnStartup_; }
    bool loggedFirstSaveResultAfterError256OnStartup() const {
        return loggedFirstSaveResultAfterError256OnStartup_;
    }

  private:
    void guardedSave(Error* error, const Changed* changed);
    bool reportedSave(const std::string& label, const Changed* changed);
    // Records an event of the app's error domain ("com.tunebrook") with the crash reporter.
    void recordEvent(std::int64_t code, ErrorInfo userInfo = {}, ErrorInfo additionalInfo = {});
    void scheduleAlert(const std::string& message);
    // The first save result after an opening that met code 256 is reported once.
    bool isFirstSaveAfterError256();

    TBDataManagerStore& store_;
    UserDefaults& defaults_;
    ErrorReporter& errors_;
    UIHost& ui_;
    MainQueue& queue_;
    bool alertShown_ = false;
    bool foundError256OnStartup_ = false;
    bool loggedFirstSaveResultAfterError256OnStartup_ = false;
};

}  // namespace tb

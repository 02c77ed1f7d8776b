#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tb {

// A piece of work for an OperationQueue that runs asynchronously: main() starts it, and the
// operation says it is done by setting its state to finished, later, from the main queue.
// An operation becomes ready once every operation it depends on has finished.
//
// Each state has a key path ("isReady", "isExecuting", "isFinished") and every change of
// state is told to the observers around the store: will-change for the new then the old
// key path, then did-change for the old then the new. The queues learn of transitions so.
class TBOperation : public std::enable_shared_from_this<TBOperation> {
  public:
    enum class State { ready, executing, finished };
    enum class Change { willChange, didChange };
    using Observer = std::function<void(Change change, const std::string& keyPath)>;

    virtual ~TBOperation();

    static const char* keyPath(State state);

    State state() const { return state_; }
    void setState(State state);

    // Its dependencies have finished and it has not started.
    bool isReady() const;
    bool isExecuting() const { return state_ == State::executing; }
    bool isFinished() const { return state_ == State::finished; }
    bool isAsynchronous() const { return true; }

    void addDependency(std::shared_ptr<TBOperation> operation);
    const std::vector<std::shared_ptr<TBOperation>>& dependencies() const { return dependencies_; }

    void addObserver(Observer observer);

    // Runs main() once, if the operation is still ready. The queue calls it.
    void start();

  protected:
    TBOperation() = default;
    virtual void main() = 0;

  private:
    void notify(Change change, State state);

    State state_ = State::ready;
    bool started_ = false;
    std::vector<std::shared_ptr<TBOperation>> dependencies_;
    std::vector<Observer> observers_;
};

}  // namespace tb

#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace tb {

class MainQueue;
class TBOperation;

// A named queue of operations on the main queue. Operations start in the order they were
// added, as soon as they are ready (their dependencies finished) and fewer than
// maxConcurrentOperationCount of the queue's operations are running; finished ones leave.
class OperationQueue {
  public:
    static constexpr int kNoLimit = -1;

    OperationQueue(MainQueue& queue, std::string name, int maxConcurrentOperationCount = kNoLimit);
    ~OperationQueue();
    OperationQueue(const OperationQueue&) = delete;
    OperationQueue& operator=(const OperationQueue&) = delete;

    const std::string& name() const;
    int maxConcurrentOperationCount() const;

    // The operation starts on a later turn of the main queue, never inside this call.
    void addOperation(std::shared_ptr<TBOperation> operation);

    // The operations that have not finished yet, in order.
    std::vector<std::shared_ptr<TBOperation>> operations() const;
    std::size_t operationCount() const;

  private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace tb

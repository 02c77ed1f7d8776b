#include "offline/OperationQueue.h"

#include <algorithm>
#include <utility>

#include "offline/TBOperation.h"
#include "platform/MainQueue.h"

namespace tb {

struct OperationQueue::State : std::enable_shared_from_this<State> {
    State(MainQueue& queue, std::string name, int limit)
        : queue(queue), name(std::move(name)), limit(limit) {}

    // Runs the next turn on the main queue: one pending turn at a time.
    void schedule() {
        if (scheduled) {
            return;
        }
        scheduled = true;
        queue.post([weak = weak_from_this()] {
            if (auto self = weak.lock()) {
                self->scheduled = false;
                self->startWhatIsReady();
            }
        });
    }

    void startWhatIsReady() {
        std::erase_if(operations, [](const auto& operation) { return operation->isFinished(); });
        auto running =
            std::count_if(operations.begin(), operations.end(),
                          [](const auto& operation) { return operation->isExecuting(); });
        // Starting one may finish it (or add more) at once: walk a copy.
        const auto waiting = operations;
        for (const auto& operation : waiting) {
            if (limit != kNoLimit && running >= limit) {
                break;
            }
            if (!operation->isReady()) {
                continue;
            }
            operation->start();
            if (operation->isExecuting()) {
                ++running;
            }
        }
    }

    // A finish of the operation, or of anything it waits for, may let something start.
    void watch(TBOperation& operation) {
        operation.addObserver(
            [weak = weak_from_this()](TBOperation::Change change, const std::string& keyPath) {
                auto self = weak.lock();
                if (self && change == TBOperation::Change::didChange &&
                    keyPath == TBOperation::keyPath(TBOperation::State::finished)) {
                    self->schedule();
                }
            });
    }

    MainQueue& queue;
    std::string name;
    int limit;
    bool scheduled = false;
    std::vector<std::shared_ptr<TBOperation>> operations;
};

OperationQueue::OperationQueue(MainQueue& queue, std::string name, int maxConcurrentOperationCount)
    : state_(std::make_shared<State>(queue, std::move(name), maxConcurrentOperationCount)) {}

OperationQueue::~OperationQueue() = default;

const std::string& OperationQueue::name() const {
    return state_->name;
}

int OperationQueue::maxConcurrentOperationCount() const {
    return state_->limit;
}

void OperationQueue::addOperation(std::shared_ptr<TBOperation> operation) {
    if (!operation) {
        return;
    }
    state_->watch(*operation);
    for (const auto& dependency : operation->dependencies()) {
        state_->watch(*dependency);
    }
    state_->operations.push_back(std::move(operation));
    state_->schedule();
}

std::vector<std::shared_ptr<TBOperation>> OperationQueue::operations() const {
    std::vector<std::shared_ptr<TBOperation>> pending;
    for (const auto& operation : state_->operations) {
        if (!operation->isFinished()) {
            pending.push_back(operation);
        }
    }
    return pending;
}

std::size_t OperationQueue::operationCount() const {
    return operations().size();
}

}  // namespace tb

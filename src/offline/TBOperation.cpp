#include "offline/TBOperation.h"

#include <algorithm>

namespace tb {

TBOperation::~TBOperation() = default;

const char* TBOperation::keyPath(State state) {
    switch (state) {
        case State::ready:
            return "isReady";
        case State::executing:
            return "isExecuting";
        case State::finished:
            return "isFinished";
    }
    return "isReady";
}

void TBOperation::setState(State state) {
    const State old = state_;
    notify(Change::willChange, state);
    notify(Change::willChange, old);
    state_ = state;
    notify(Change::didChange, old);
    notify(Change::didChange, state);
}

bool TBOperation::isReady() const {
    const bool dependenciesDone = std::all_of(
        dependencies_.begin(), dependencies_.end(),
        [](const std::shared_ptr<TBOperation>& dependency) { return dependency->isFinished(); });
    return dependenciesDone && state_ == State::ready;
}

void TBOperation::addDependency(std::shared_ptr<TBOperation> operation) {
    if (operation && operation.get() != this) {
        dependencies_.push_back(std::move(operation));
    }
}

void TBOperation::addObserver(Observer observer) {
    observers_.push_back(std::move(observer));
}

void TBOperation::start() {
    if (started_ || !isReady()) {
        return;
    }
    started_ = true;
    main();
}

void TBOperation::notify(Change change, State state) {
    // An observer may add another: walk a copy.
    const auto observers = observers_;
    for (const Observer& observer : observers) {
        observer(change, keyPath(state));
    }
}

}  // namespace tb

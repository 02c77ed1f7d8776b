#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/Error.h"
#include "platform/Fatal.h"
#include "platform/MainQueue.h"

namespace tb {

// Promises on the main queue, in the manner the app's logic was written against:
//
//   auto [promise, resolver] = Promise<int>::pending(queue);
//   promise.then([](int n) { return n * 2; })          // a value, void, or another Promise
//          .then([](int n) { return load(n); })        // a Promise<U> is flattened
//          .recover([](const Error&) { return 0; })
//          .ensure([] { hideSpinner(); })
//          .catch_([](const Error& e) { report(e); });
//
// Every callback runs as a task of the queue the promise was made on, never synchronously
// inside fulfill() or reject(), and never synchronously when attached to a promise that has
// already settled. A promise settles once; later fulfils and rejects are ignored.
// Resolvers may be used from any thread; everything else belongs to the main queue.

template <typename T>
class Promise;

// The outcome of a settled promise: its value, or the error it was rejected with.
template <typename T>
struct PromiseResult {
    std::optional<T> value;
    std::optional<Error> error;

    bool isFulfilled() const { return !error.has_value(); }
};

template <>
struct PromiseResult<void> {
    std::optional<Error> error;

    bool isFulfilled() const { return !error.has_value(); }
};

namespace detail {

// What a promise and its resolvers share: the outcome once it is known, and the callbacks
// waiting for it.
template <typename T>
class PromiseState : public std::enable_shared_from_this<PromiseState<T>> {
  public:
    using Callback = std::function<void(const PromiseResult<T>&)>;

    explicit PromiseState(MainQueue& queue) : queue_(queue) {}

    MainQueue& queue() const { return queue_; }

    void settle(PromiseResult<T> result) {
        std::vector<Callback> due;
        {
            std::lock_guard lock(mutex_);
            if (result_) {
                return;
            }
            result_ = std::move(result);
            due.swap(waiting_);
        }
        for (Callback& callback : due) {
            deliver(std::move(callback));
        }
    }

    void subscribe(Callback callback) {
        {
            std::lock_guard lock(mutex_);
            if (!result_) {
                waiting_.push_back(std::move(callback));
                return;
            }
        }
        deliver(std::move(callback));
    }

    std::optional<PromiseResult<T>> result() const {
        std::lock_guard lock(mutex_);
        return result_;
    }

  private:
    // The outcome never changes once set, so the task may read it without the lock: the
    // queue's own hand-over orders the write before the read.
    void deliver(Callback callback) {
        queue_.post([self = this->shared_from_this(), callback = std::move(callback)] {
            callback(*self->result_);
        });
    }

    MainQueue& queue_;
    mutable std::mutex mutex_;
    std::optional<PromiseResult<T>> result_;
    std::vector<Callback> waiting_;
};

template <typename T>
class ResolverBase {
  public:
    void reject(Error error) const {
        PromiseResult<T> result;
        result.error = std::move(error);
        state_->settle(std::move(result));
    }

    // Settles with an outcome as it stands (a value or an error).
    void settle(PromiseResult<T> result) const { state_->settle(std::move(result)); }

  protected:
    explicit ResolverBase(std::shared_ptr<PromiseState<T>> state) : state_(std::move(state)) {}

    std::shared_ptr<PromiseState<T>> state_;
};

}  // namespace detail

// The settling end of a pending promise.
template <typename T>
class Resolver : public detail::ResolverBase<T> {
  public:
    explicit Resolver(std::shared_ptr<detail::PromiseState<T>> state)
        : detail::ResolverBase<T>(std::move(state)) {}

    void fulfill(T value) const {
        PromiseResult<T> result;
        result.value = std::move(value);
        this->state_->settle(std::move(result));
    }
};

template <>
class Resolver<void> : public detail::ResolverBase<void> {
  public:
    explicit Resolver(std::shared_ptr<detail::PromiseState<void>> state)
        : detail::ResolverBase<void>(std::move(state)) {}

    void fulfill() const { state_->settle(PromiseResult<void>{}); }
};

namespace detail {

template <typename R>
struct PromiseValue {
    using type = R;
    static constexpr bool isPromise = false;
};
template <typename U>
struct PromiseValue<Promise<U>> {
    using type = U;
    static constexpr bool isPromise = true;
};

// What `then` calls its callback with: the value, or nothing for Promise<void>.
template <typename T, typename F>
struct ThenReturn {
    using type = std::invoke_result_t<F&, const T&>;
};
template <typename F>
struct ThenReturn<void, F> {
    using type = std::invoke_result_t<F&>;
};

// Runs `callback(args...)` and settles `resolver` with what it gave: the value, nothing
// (void), or, for a returned promise, that promise's outcome when it comes.
template <typename U, typename F, typename... Args>
void settleWith(const Resolver<U>& resolver, F& callback, const Args&... args) {
    using R = std::invoke_result_t<F&, const Args&...>;
    if constexpr (PromiseValue<R>::isPromise) {
        callback(args...).pipe(
            [resolver](const PromiseResult<U>& result) { resolver.settle(result); });
    } else if constexpr (std::is_void_v<R>) {
        callback(args...);
        resolver.fulfill();
    } else {
        resolver.fulfill(callback(args...));
    }
}

}  // namespace detail

template <typename T>
class Promise {
  public:
    struct Pending {
        Promise<T> promise;
        Resolver<T> resolver;
    };

    // A promise that settles when its resolver says so.
    static Pending pending(MainQueue& queue) {
        auto state = std::make_shared<detail::PromiseState<T>>(queue);
        return Pending{Promise<T>(state), Resolver<T>(state)};
    }

    // A promise whose body gets the resolver at once (the body itself runs synchronously).
    Promise(MainQueue& queue, const std::function<void(Resolver<T>)>& body)
        : state_(std::make_shared<detail::PromiseState<T>>(queue)) {
        body(Resolver<T>(state_));
    }

    // fulfilled(queue, value), or fulfilled(queue) for Promise<void>.
    template <typename... Value>
    static Promise<T> fulfilled(MainQueue& queue, Value&&... value) {
        Pending made = pending(queue);
        made.resolver.fulfill(std::forward<Value>(value)...);
        return made.promise;
    }

    static Promise<T> rejected(MainQueue& queue, Error error) {
        Pending made = pending(queue);
        made.resolver.reject(std::move(error));
        return made.promise;
    }

    MainQueue& queue() const { return state_->queue(); }

    bool isPending() const { return !state_->result().has_value(); }
    // The outcome, once settled.
    std::optional<PromiseResult<T>> result() const { return state_->result(); }

    // Runs `callback` with the value when fulfilled; the new promise follows what it
    // returns. A rejection passes by the callback to the new promise.
    template <typename F>
    auto then(F callback) const {
        using R = typename detail::ThenReturn<T, F>::type;
        using U = typename detail::PromiseValue<R>::type;
        auto next = Promise<U>::pending(queue());
        pipe([callback, resolver = next.resolver](const PromiseResult<T>& result) mutable {
            if (!result.isFulfilled()) {
                resolver.reject(*result.error);
            } else if constexpr (std::is_void_v<T>) {
                detail::settleWith(resolver, callback);
            } else {
                detail::settleWith(resolver, callback, *result.value);
            }
        });
        return next.promise;
    }

    // Turns a rejection into a value (or a promise of one); a fulfilled value passes by.
    template <typename F>
    Promise<T> recover(F callback) const {
        using R = std::invoke_result_t<F&, const Error&>;
        static_assert(std::is_same_v<typename detail::PromiseValue<R>::type, T>,
                      "recover must give the promise's own type");
        auto next = pending(queue());
        pipe([callback, resolver = next.resolver](const PromiseResult<T>& result) mutable {
            if (result.isFulfilled()) {
                resolver.settle(result);
            } else {
                detail::settleWith(resolver, callback, *result.error);
            }
        });
        return next.promise;
    }

    // The end of a chain: handles a rejection. The promise it returns fulfils once the
    // chain is over either way, so that `finally` can follow.
    template <typename F>
    Promise<void> catch_(F callback) const {
        auto next = Promise<void>::pending(queue());
        pipe([callback, resolver = next.resolver](const PromiseResult<T>& result) mutable {
            if (!result.isFulfilled()) {
                callback(*result.error);
            }
            resolver.fulfill();
        });
        return next.promise;
    }

    // Runs `callback` on either outcome, then passes the outcome on unchanged.
    template <typename F>
    Promise<T> ensure(F callback) const {
        auto next = pending(queue());
        pipe([callback, resolver = next.resolver](const PromiseResult<T>& result) mutable {
            callback();
            resolver.settle(result);
        });
        return next.promise;
    }

    // Runs `callback` on either outcome, at the end of a chain.
    template <typename F>
    void finally(F callback) const {
        pipe([callback](const PromiseResult<T>&) mutable { callback(); });
    }

    // The same outcome without the value.
    Promise<void> asVoid() const {
        if constexpr (std::is_void_v<T>) {
            return *this;
        } else {
            return then([](const T&) {});
        }
    }

    // Hands the outcome to `callback` (on the queue) once settled. The building block of
    // the rest; also how a promise is forwarded to another resolver.
    void pipe(std::function<void(const PromiseResult<T>&)> callback) const {
        state_->subscribe(std::move(callback));
    }

  private:
    explicit Promise(std::shared_ptr<detail::PromiseState<T>> state) : state_(std::move(state)) {}

    std::shared_ptr<detail::PromiseState<T>> state_;
};

// Waits for every promise, whatever its outcome: fulfils with their outcomes in order and
// never rejects. An empty list fulfils with an empty list.
template <typename T>
Promise<std::vector<PromiseResult<T>>> whenResolved(MainQueue& queue,
                                                    const std::vector<Promise<T>>& promises) {
    using Results = std::vector<PromiseResult<T>>;
    auto all = Promise<Results>::pending(queue);
    if (promises.empty()) {
        all.resolver.fulfill(Results{});
        return all.promise;
    }
    struct Join {
        std::vector<std::optional<PromiseResult<T>>> outcomes;
        std::size_t left;
    };
    auto join = std::make_shared<Join>(Join{{}, promises.size()});
    join->outcomes.resize(promises.size());
    for (std::size_t i = 0; i < promises.size(); ++i) {
        promises[i].pipe([join, i, resolver = all.resolver](const PromiseResult<T>& result) {
            join->outcomes[i] = result;
            if (--join->left > 0) {
                return;
            }
            Results results;
            results.reserve(join->outcomes.size());
            for (auto& outcome : join->outcomes) {
                results.push_back(std::move(*outcome));
            }
            resolver.fulfill(std::move(results));
        });
    }
    return all.promise;
}

// Settles as the first of `promises` to settle, with its outcome. The list must not be empty.
template <typename T>
Promise<T> race(const std::vector<Promise<T>>& promises) {
    if (promises.empty()) {
        TB_FATAL("race needs at least one promise");
    }
    auto first = Promise<T>::pending(promises.front().queue());
    for (const Promise<T>& promise : promises) {
        promise.pipe([resolver = first.resolver](const PromiseResult<T>& result) {
            resolver.settle(result);
        });
    }
    return first.promise;
}

// Fulfils once `seconds` have passed on the queue's clock (virtual time on ManualQueue).
Promise<void> after(MainQueue& queue, double seconds);

}  // namespace tb

#include <string>
#include <thread>

#include "platform/ManualQueue.h"
#include "platform/Promise.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

Error failure(std::int64_t code) {
    return Error{"Test", code, "failed", {}};
}

class PromiseTest : public ::testing::Test {
  protected:
    ManualQueue queue;
};

TEST_F(PromiseTest, CallbacksNeverRunInsideFulfilOrWhenAttachedToASettledPromise) {
    auto [promise, resolver] = Promise<int>::pending(queue);
    int seen = 0;
    promise.then([&](int value) { seen = value; });

    resolver.fulfill(7);
    EXPECT_EQ(seen, 0) << "ran synchronously inside fulfill";
    queue.runUntilIdle();
    EXPECT_EQ(seen, 7);

    int late = 0;
    promise.then([&](int value) { late = value; });
    EXPECT_EQ(late, 0) << "ran synchronously when attached to a settled promise";
    queue.runUntilIdle();
    EXPECT_EQ(late, 7);
}

TEST_F(PromiseTest, ThenMapsValuesAndFlattensReturnedPromises) {
    auto [source, resolver] = Promise<int>::pending(queue);
    auto inner = Promise<std::string>::pending(queue);
    std::string seen;
    bool voidStepRan = false;

    source.then([](int n) { return n * 2; })
        .then([&](int n) {
            EXPECT_EQ(n, 42);
            return inner.promise;
        })
        .then([&](const std::string& text) { seen = text; })
        .then([&] { voidStepRan = true; });

    resolver.fulfill(21);
    queue.runUntilIdle();
    EXPECT_TRUE(seen.empty()) << "a step went on before the promise it returned settled";

    queue.postAfter(3.0, [&] { inner.resolver.fulfill("done"); });
    queue.advanceBy(3.0);
    EXPECT_EQ(seen, "done");
    EXPECT_TRUE(voidStepRan);
}

TEST_F(PromiseTest, RejectionSkipsThenStepsUntilCatchOrRecover) {
    auto [source, resolver] = Promise<int>::pending(queue);
    int thenCalls = 0;
    std::int64_t caughtCode = 0;
    source.then([&](int) { ++thenCalls; })
        .then([&] { ++thenCalls; })
        .catch_([&](const Error& error) { caughtCode = error.code; });

    auto recovered =
        source.recover([](const Error& error) { return static_cast<int>(-error.code); });
    auto recoveredLater =
        source.recover([&](const Error&) { return Promise<int>::fulfilled(queue, 99); });

    resolver.reject(failure(5));
    queue.runUntilIdle();

    EXPECT_EQ(thenCalls, 0);
    EXPECT_EQ(caughtCode, 5);
    ASSERT_TRUE(recovered.result());
    EXPECT_EQ(recovered.result()->value, -5);
    ASSERT_TRUE(recoveredLater.result());
    EXPECT_EQ(recoveredLater.result()->value, 99);
}

TEST_F(PromiseTest, AStepCanRejectByReturningARejectedPromiseAndAPromiseSettlesOnce) {
    std::optional<Error> caught;
    Promise<int>::fulfilled(queue, 1)
        .then([&](int) { return Promise<void>::rejected(queue, failure(9)); })
        .then([] { ADD_FAILURE() << "ran after a rejection"; })
        .catch_([&](const Error& error) { caught = error; });
    queue.runUntilIdle();
    ASSERT_TRUE(caught);
    EXPECT_EQ(caught->code, 9);
}

// Catch leaves a value alone and recover passes it on; ensure and finally run on both
// outcomes, and ensure keeps the outcome.
TEST_F(PromiseTest, CatchRecoverEnsureAndFinallyOnBothOutcomes) {
    bool caught = false;
    int ensured = 0;
    int finals = 0;
    auto good = Promise<int>::fulfilled(queue, 4).ensure([&] { ++ensured; });
    auto bad = Promise<int>::rejected(queue, failure(2)).ensure([&] { ++ensured; });
    good.catch_([&](const Error&) { caught = true; }).finally([&] { ++finals; });
    bad.finally([&] { ++finals; });
    auto recovered = good.recover([](const Error&) { return 0; });
    queue.runUntilIdle();

    EXPECT_FALSE(caught);
    EXPECT_EQ(ensured, 2);
    EXPECT_EQ(finals, 2);
    EXPECT_EQ(recovered.result()->value, 4);
    EXPECT_EQ(good.result()->value, 4);
    ASSERT_TRUE(bad.result()->error);
    EXPECT_EQ(bad.result()->error->code, 2);

    auto [promise, resolver] = Promise<std::string>::pending(queue);
    int calls = 0;
    promise.then([&](const std::string&) { ++calls; }).catch_([&](const Error&) { ++calls; });
    resolver.fulfill("first");
    resolver.reject(failure(1));
    resolver.fulfill("second");
    queue.runUntilIdle();

    EXPECT_EQ(calls, 1);
    EXPECT_EQ(promise.result()->value, "first");
    EXPECT_FALSE(promise.result()->error);
}

TEST_F(PromiseTest, BodyGetsTheResolverAndVoidPromisesChain) {
    std::optional<Resolver<void>> saved;
    Promise<void> promise(queue, [&](Resolver<void> resolver) { saved = resolver; });
    ASSERT_TRUE(saved) << "the body runs at once";
    EXPECT_TRUE(promise.isPending());

    int value = 0;
    promise.then([] { return 12; }).then([&](int n) { value = n; });
    saved->fulfill();
    queue.runUntilIdle();
    EXPECT_EQ(value, 12);
    EXPECT_FALSE(promise.isPending());
}

TEST_F(PromiseTest, ResolversMayBeUsedFromAnotherThread) {
    auto [promise, resolver] = Promise<int>::pending(queue);
    int seen = 0;
    promise.then([&](int n) { seen = n; });
    std::thread worker([resolver = resolver] { resolver.fulfill(5); });
    worker.join();
    queue.runUntilIdle();
    EXPECT_EQ(seen, 5);
}

TEST_F(PromiseTest, WhenResolvedWaitsForAllAndKeepsEachOutcomeInOrder) {
    auto first = Promise<int>::pending(queue);
    auto second = Promise<int>::pending(queue);
    auto third = Promise<int>::pending(queue);
    auto all = whenResolved(queue, std::vector{first.promise, second.promise, third.promise});

    queue.postAfter(1.0, [&] { third.resolver.fulfill(3); });
    queue.postAfter(2.0, [&] { first.resolver.reject(failure(1)); });
    queue.advanceBy(2.0);
    EXPECT_TRUE(all.isPending());

    queue.postAfter(1.0, [&] { second.resolver.fulfill(2); });
    queue.advanceBy(1.0);
    ASSERT_FALSE(all.isPending());
    ASSERT_TRUE(all.result()->isFulfilled()) << "when(resolved) must never reject";
    const auto outcomes = *all.result()->value;
    ASSERT_EQ(outcomes.size(), 3u);
    EXPECT_EQ(outcomes[0].error->code, 1);
    EXPECT_EQ(outcomes[1].value, 2);
    EXPECT_EQ(outcomes[2].value, 3);
    // Its void form, raced against a time-out, goes on at once: all have settled.
    auto waited = race(std::vector{all.asVoid(), after(queue, 5.0)});
    queue.runUntilIdle();
    EXPECT_TRUE(waited.result() && waited.result()->isFulfilled());

    auto none = whenResolved(queue, std::vector<Promise<void>>{});
    queue.runUntilIdle();
    EXPECT_TRUE(none.result()->value->empty());
}

TEST_F(PromiseTest, RaceTakesTheFirstOutcomeEvenARejectionAndAfterFulfilsOnTime) {
    auto slow = Promise<int>::pending(queue);
    auto fast = Promise<int>::pending(queue);
    auto winner = race(std::vector{slow.promise, fast.promise});
    queue.postAfter(2.0, [&] { slow.resolver.fulfill(1); });
    queue.postAfter(1.0, [&] { fast.resolver.reject(failure(8)); });
    queue.advanceBy(5.0);

    ASSERT_TRUE(winner.result());
    ASSERT_TRUE(winner.result()->error);
    EXPECT_EQ(winner.result()->error->code, 8);

    auto timeout = after(queue, 2.5);
    queue.advanceBy(2.4);
    EXPECT_TRUE(timeout.isPending());
    queue.advanceBy(0.1);
    EXPECT_FALSE(timeout.isPending());
}

}  // namespace
}  // namespace tb

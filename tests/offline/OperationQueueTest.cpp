// The operation queues of the download manager, on virtual time.

#include "offline/OperationQueue.h"
#include "offline/TBMusicDownloadManager.h"
#include "offline/TBOperation.h"
#include "platform/ManualQueue.h"
#include "support/TestPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

using ::testing::ElementsAre;

// Starts when the queue says so and finishes when the test says so.
class ManualOperation final : public TBOperation {
  public:
    ManualOperation(std::string name, std::vector<std::string>& started)
        : name_(std::move(name)), started_(started) {}
    void finish() { setState(State::finished); }

  protected:
    void main() override {
        setState(State::executing);
        started_.push_back(name_);
    }

  private:
    std::string name_;
    std::vector<std::string>& started_;
};

class OperationQueueTest : public ::testing::Test {
  protected:
    std::shared_ptr<ManualOperation> operation(const std::string& name) {
        return std::make_shared<ManualOperation>(name, started);
    }
    ManualQueue queue;
    std::vector<std::string> started;
};

TEST_F(OperationQueueTest, ASerialQueueRunsOneOperationAtATimeInTheOrderAdded) {
    OperationQueue serial(queue, "serial", 1);
    auto a = operation("a");
    auto b = operation("b");
    auto c = operation("c");
    serial.addOperation(a);
    serial.addOperation(b);
    serial.addOperation(c);
    EXPECT_TRUE(started.empty());  // never inside addOperation
    queue.runUntilIdle();
    EXPECT_THAT(started, ElementsAre("a"));
    EXPECT_EQ(serial.operationCount(), 3u);
    a->finish();
    queue.runUntilIdle();
    EXPECT_THAT(started, ElementsAre("a", "b"));
    b->finish();
    c->finish();  // finished before it ran: it never runs
    queue.runUntilIdle();
    EXPECT_THAT(started, ElementsAre("a", "b"));
    EXPECT_EQ(serial.operationCount(), 0u);
}

TEST_F(OperationQueueTest, AnUnlimitedQueueStartsEverythingReady) {
    OperationQueue open(queue, "open");
    open.addOperation(operation("a"));
    open.addOperation(operation("b"));
    queue.runUntilIdle();
    EXPECT_THAT(started, ElementsAre("a", "b"));
}

TEST_F(OperationQueueTest, AnOperationWaitsForItsDependencyInAnotherQueue) {
    OperationQueue songs(queue, "songs", 1);
    OperationQueue images(queue, "images", 1);
    auto song = operation("song");
    auto image = operation("image");
    auto other = operation("other image");
    image->addDependency(song);
    images.addOperation(image);
    images.addOperation(other);
    songs.addOperation(song);
    queue.runUntilIdle();
    // The waiting operation doesn't hold up the one behind it.
    EXPECT_THAT(started, ElementsAre("other image", "song"));
    other->finish();
    queue.runUntilIdle();
    EXPECT_THAT(started, ElementsAre("other image", "song"));
    song->finish();
    queue.runUntilIdle();
    EXPECT_THAT(started, ElementsAre("other image", "song", "image"));

    // A dependency that has already finished holds nothing up.
    auto late = operation("late");
    late->addDependency(song);
    images.addOperation(late);
    image->finish();
    queue.runUntilIdle();
    EXPECT_EQ(started.back(), "late");
}

TEST_F(OperationQueueTest, AStateChangeIsToldWillNewWillOldDidOldDidNew) {
    auto a = operation("a");
    std::vector<std::string> told;
    a->addObserver([&](TBOperation::Change change, const std::string& keyPath) {
        told.push_back((change == TBOperation::Change::willChange ? "will " : "did ") + keyPath);
    });
    EXPECT_TRUE(a->isReady());
    a->start();
    EXPECT_THAT(told,
                ElementsAre("will isExecuting", "will isReady", "did isReady", "did isExecuting"));
    EXPECT_TRUE(a->isExecuting());
    EXPECT_FALSE(a->isReady());
    a->start();  // once only
    EXPECT_THAT(started, ElementsAre("a"));
    EXPECT_TRUE(a->isAsynchronous());
}

}  // namespace
}  // namespace tb::test

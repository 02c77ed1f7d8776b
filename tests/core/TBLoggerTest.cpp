#include "core/TBLogViewerViewModel.h"
#include "core/TBLogger.h"
#include "support/TestPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(TBLoggerTest, KeepsEveryTextByTagInOrder) {
    TBLogger logger;
    logger.inMemoryLog("Event: Play", "Mixpanel");
    logger.inMemoryLog("other", "Ads");
    logger.inMemoryLog("Event: Pause", "Mixpanel");
    logger.log("the console log keeps nothing");

    EXPECT_THAT(logger.inMemoryLog().at("Mixpanel"), ElementsAre("Event: Play", "Event: Pause"));
    EXPECT_THAT(logger.inMemoryLog().at("Ads"), ElementsAre("other"));
    EXPECT_EQ(logger.inMemoryLog().size(), 2u);
}

TEST(TBLoggerTest, TheSharedLoggerBelongsToTheContext) {
    {
        test::TestPlatform platform;
        TBLogger::sharedInstance().inMemoryLog("one", "Mixpanel");
        EXPECT_EQ(&TBLogger::sharedInstance(), &platform.context().logger());
    }
    test::TestPlatform next;
    EXPECT_THAT(TBLogger::sharedInstance().inMemoryLog(), IsEmpty());
}

TEST(TBLogViewerViewModelTest, ShowsTrackedEventsNewestFirstAndRefreshReadsAgain) {
    TBLogger logger;
    logger.inMemoryLog("not an event", "Ads");
    TBLogViewerViewModel viewer(logger);
    int reloads = 0;
    int refreshesEnded = 0;
    viewer.onReload = [&] { ++reloads; };
    viewer.onEndRefreshing = [&] { ++refreshesEnded; };

    viewer.load();
    EXPECT_THAT(viewer.data(), IsEmpty());

    logger.inMemoryLog("first", "Mixpanel");
    logger.inMemoryLog("second", "Mixpanel");
    viewer.load();
    EXPECT_THAT(viewer.data(), ElementsAre("second", "first"));
    EXPECT_EQ(refreshesEnded, 0);

    logger.inMemoryLog("third", "Mixpanel");
    viewer.refresh();
    EXPECT_THAT(viewer.data(), ElementsAre("third", "second", "first"));
    EXPECT_EQ(reloads, 3);
    EXPECT_EQ(refreshesEnded, 1);
    EXPECT_THAT(logger.inMemoryLog().at("Mixpanel"), ElementsAre("first", "second", "third"));
}

}  // namespace
}  // namespace tb

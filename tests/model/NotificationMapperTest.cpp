#include <optional>
#include <vector>

#include "Fixtures.h"
#include "ScopedTimeZone.h"
#include "model/Item.h"
#include "model/TBNotification.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

using Verb = TBNotificationVerb;

std::vector<std::optional<TBNotification>> notifications() {
    std::vector<std::optional<TBNotification>> result;
    for (const JSON& entry : test::fixture("notifications.json")["results"].arrayValue()) {
        result.push_back(TBNotification::fromJSON(entry));
    }
    return result;
}

TEST(NotificationMapperTest, VerbsMapToTheirValuesAndUnknownVerbsGiveNothing) {
    const auto all = notifications();
    ASSERT_EQ(all.size(), 10u);
    const std::vector<Verb> expected = {
        Verb::favorite,         Verb::follow,          Verb::reup,    Verb::playlisted,
        Verb::playlistFavorite, Verb::playlistUpdated, Verb::comment, Verb::reply};
    for (size_t i = 0; i < expected.size(); ++i) {
        ASSERT_TRUE(all[i].has_value()) << i;
        EXPECT_EQ(all[i]->verb, expected[i]) << i;
        EXPECT_TRUE(all[i]->actor) << i;
    }
    EXPECT_FALSE(all[8].has_value());  // "wave"
    EXPECT_FALSE(all[9].has_value());  // no verb
}

TEST(NotificationMapperTest, CreatedAtNeedsTheExactMicrosecondFormatAndSeenIsOptional) {
    const auto all = notifications();
    ASSERT_TRUE(all[0]->createdAt.has_value());
    {
        const test::ScopedTimeZone utc("UTC0");
        EXPECT_DOUBLE_EQ(*notifications()[0]->createdAt, 1795336215.25);
    }
    {
        const test::ScopedTimeZone lagos("WAT-1");
        EXPECT_DOUBLE_EQ(*notifications()[0]->createdAt, 1795336215.25 - 3600);
    }
    EXPECT_EQ(all[1]->createdAt, std::nullopt);  // "...15.25Z"
    EXPECT_EQ(all[2]->createdAt, std::nullopt);  // absent
    // "seen" is optional too.
    EXPECT_EQ(all[0]->seen, false);
    EXPECT_EQ(all[1]->seen, true);  // "yes"
    EXPECT_EQ(all[2]->seen, std::nullopt);
}

TEST(NotificationMapperTest, EachVerbTakesItsOwnMusic) {
    const auto all = notifications();
    // favorite: the object, restricted or not.
    ASSERT_TRUE(all[0]->object);
    EXPECT_EQ(all[0]->object->itemID, "n-1");
    EXPECT_TRUE(all[0]->object->georestricted);
    // follow: only the actor.
    EXPECT_FALSE(all[1]->object);
    EXPECT_FALSE(all[1]->target);
    EXPECT_EQ(all[1]->actor->urlSlug, "follower");
    // reup: the object.
    ASSERT_TRUE(all[2]->object);
    EXPECT_EQ(all[2]->object->itemType(), ItemType::album);
    // playlisted: the object and the playlist it went into, through the playlist mapper.
    ASSERT_TRUE(all[3]->object && all[3]->target);
    EXPECT_EQ(all[3]->target->itemID, "pl-4");
    EXPECT_EQ(all[3]->target->uploaderName, "Curator");
    // playlistfavorite: a playlist object through the playlist mapper.
    ASSERT_TRUE(all[4]->object);
    EXPECT_EQ(all[4]->object->uploaderName, "Owner");
    EXPECT_FALSE(all[4]->target);
    // playlist_updated: only the target.
    EXPECT_FALSE(all[5]->object);
    ASSERT_TRUE(all[5]->target);
    EXPECT_EQ(all[5]->target->itemID, "pl-6");
}

TEST(NotificationMapperTest, CommentsKeepTheirTextsAndReplies) {
    const auto all = notifications();
    const TBNotification& comment = *all[6];
    ASSERT_TRUE(comment.object);
    EXPECT_EQ(comment.object->itemID, "n-7");
    EXPECT_EQ(comment.commentDict,
              (std::map<std::string, std::string>{{"comment", "Great hook!"}}));

    const TBNotification& reply = *all[7];
    ASSERT_TRUE(reply.object);
    ASSERT_EQ(reply.commentDict.size(), 2u);
    EXPECT_EQ(JSON::parse(reply.commentDict.at("parent"))["content"].stringValue(), "Great hook!");
    EXPECT_EQ(JSON::parse(reply.commentDict.at("comment"))["uuid"].stringValue(), "c-2");
}

}  // namespace
}  // namespace tb

#include <nlohmann/json.hpp>

#include "CatalogueFixture.h"
#include "api/TBSearchGrouping.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "platform/JSON.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

using json = nlohmann::json;

json answerWithHeads() {
    json body = resultsOf({songJson("1")});
    body["related"] = 1;
    body["tastemaker_artist"] = artistJson("a1", "taste");
    body["verified_playlist"] = playlistJson("p1");
    return body;
}

std::vector<ItemPtr> plainRows() {
    return {Item::parseItemFrom(JSON(songJson("1")), true)};
}

TEST(TBSearchGroupingTest, PlaylistSearchesTakeOnlyThePlainList) {
    const auto grouped = TBSearchGrouping::group(JSON(answerWithHeads()), "playlists", plainRows());
    ASSERT_EQ(grouped.rows.size(), 1u);
    EXPECT_EQ(std::get<ItemPtr>(grouped.rows[0])->itemID, "1");
    EXPECT_FALSE(grouped.related) << "only music searches have related results";
}

TEST(TBSearchGroupingTest, SongSearchesGetTheHeadsButNoRelatedFlag) {
    const auto grouped = TBSearchGrouping::group(JSON(answerWithHeads()), "songs", plainRows());
    ASSERT_EQ(grouped.rows.size(), 3u);
    EXPECT_TRUE(std::get<ArtistPtr>(grouped.rows[0])->verifiedSearchResult);
    EXPECT_TRUE(std::get<ItemPtr>(grouped.rows[1])->verifiedSearchResult);
    EXPECT_FALSE(std::get<ItemPtr>(grouped.rows[2])->verifiedSearchResult);
    EXPECT_FALSE(grouped.related);
}

TEST(TBSearchGroupingTest, AnAnswerWithoutAListGivesNoRowsButKeepsTheFlag) {
    json body = answerWithHeads();
    body["results"] = {{"id", "1"}};
    const auto grouped = TBSearchGrouping::group(JSON(std::move(body)), "music", {});
    EXPECT_TRUE(grouped.rows.empty());
    EXPECT_TRUE(grouped.related);

    json textFlag = resultsOf({});
    textFlag["related"] = "1";
    EXPECT_FALSE(TBSearchGrouping::group(JSON(std::move(textFlag)), "music", {}).related)
        << "the flag counts only as a number";
}

}  // namespace
}  // namespace tb::test

#include "CatalogueFixture.h"
#include "api/TBMusicRepository.h"
#include "model/Item.h"

#include <gmock/gmock.h>

namespace tb::test {
namespace {

using json = nlohmann::json;

class TBMusicRepositoryTest : public CatalogueTest {
  protected:
    template <typename T>
    PromiseResult<T> settle(const Promise<T>& promise) {
        platform.queue.runUntilIdle();
        const auto result = promise.result();
        EXPECT_TRUE(result.has_value()) << "the promise is still pending";
        return result.value_or(PromiseResult<T>{});
    }

    TBMusicRepository repository{platform.context().dataManager(), platform.queue};
};

TEST_F(TBMusicRepositoryTest, AMissingIdentifierRejectsWithoutAsking) {
    const auto song = settle(repository.getSongInfoWithIdentifier(std::nullopt, json::object()));
    const auto album = settle(repository.getAlbumInfoWithIdentifier(std::string(), json::object()));
    const auto highlights = settle(repository.getHighlightsWithUserSlug(std::nullopt, true));
    const auto add = settle(repository.addToHighlights(std::make_shared<Item>()));

    for (const auto* error : {&song.error, &album.error, &highlights.error, &add.error}) {
        ASSERT_TRUE(error->has_value());
        EXPECT_EQ((*error)->domain, TBMusicDataSourceError::kDomain);
        EXPECT_EQ((*error)->code, TBMusicDataSourceError::invalidIdentifier);
    }
    EXPECT_EQ(sentCount(), 0u);
}

TEST_F(TBMusicRepositoryTest, InfoReadsFulfilWithTheItem) {
    const auto promise = repository.getPlaylistInfo(std::string("curator/mix"), json::object());
    EXPECT_EQ(call(0).path, "playlist/curator/mix");
    answer(0, 200, json{{"results", playlistJson("9")}});
    const auto result = settle(promise);
    ASSERT_TRUE(result.isFulfilled());
    EXPECT_EQ((*result.value)->itemID, "9");
}

TEST_F(TBMusicRepositoryTest, FailuresRejectWithTheServicesErrorcodeWhenItGaveOne) {
    const auto coded = repository.getSongInfoWithIdentifier(std::string("1"), json::object());
    const auto plain = repository.getSongInfoWithIdentifier(std::string("2"), json::object());
    const auto empty = repository.getSongInfoWithIdentifier(std::string("3"), json::object());
    answer(0, 404, json{{"errorcode", 1404}, {"message", "Not found"}});
    answer(1, 500, std::string("down"));
    answer(2, 200, json{{"results", {{"title", "no id"}}}});

    const auto codedError = settle(coded).error;
    ASSERT_TRUE(codedError);
    EXPECT_EQ(codedError->code, TBMusicDataSourceError::failed);
    EXPECT_EQ(codedError->message, "1404");
    EXPECT_EQ(codedError->userInfo.at("errorcode"), "1404");
    for (const auto& result : {settle(plain), settle(empty)}) {
        ASSERT_TRUE(result.error);
        EXPECT_EQ(result.error->code, TBMusicDataSourceError::failed);
        EXPECT_EQ(result.error->message, "");
    }
}

TEST_F(TBMusicRepositoryTest, HighlightWritesSettleWithTheirAnswer) {
    session.slug = "me";
    const auto item = song("5");
    const auto added = repository.addToHighlights(item);
    const auto removed = repository.removeFromHighlights(item);
    const auto listed = repository.getHighlightsWithUserSlug(std::string("me"), true);
    answer(0, 200, json{{"results", json::array()}});
    answer(1, 400, json{{"errorcode", "too_many"}});
    answer(2, 200, resultsOf({restrictedSongJson("7")}));

    EXPECT_TRUE(settle(added).isFulfilled());
    EXPECT_EQ(settle(removed).error->message, "too_many");
    const auto highlights = settle(listed);
    ASSERT_TRUE(highlights.isFulfilled());
    ASSERT_EQ(highlights.value->size(), 1u)
        << "the listener's own highlights keep restricted music";
}

}  // namespace
}  // namespace tb::test

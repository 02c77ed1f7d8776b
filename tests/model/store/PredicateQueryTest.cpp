#include <string>
#include <vector>

#include "StoreTestSupport.h"

#include <gtest/gtest.h>

namespace tb::test {
namespace {

using Ids = std::vector<std::string>;

// Rows with accents, nils and flags, written by the context and (for the NULL flag of an
// older version's row) by SQL directly.
class PredicateQueryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        add("1", "Café del Mar", "Émile", [](Item& i) {
            i.downloaded = true;
            i.isSong = true;
            i.duration = 100;
            i.downloadDate = 1000.0;
            i.uploaderFollowersCount = 5;
        });
        add("2", "Ärzte live", "Die Ärzte", [](Item& i) {
            i.downloaded = true;
            i.cached = true;
            i.isAlbum = true;
            i.duration = 200;
            i.downloadDate = 2000.0;
        });
        add("3", "Cafe Society", "Straße", [](Item& i) {
            i.isSong = true;
            i.duration = 300;
            i.uploaderFollowersCount = 0;
        });
        add("4", std::nullopt, "Plain", [](Item& i) {
            i.downloaded = true;
            i.isSong = true;
        });
        add("5", "It's 'quoted'", "O'Neil", [](Item& i) { i.downloaded = true; });
        ASSERT_TRUE(store.context().save());
        store.close();
        StoreFixture::query(store.path(), "UPDATE Item SET cached = NULL WHERE itemID = '4'");
        store.open();
    }

    template <class Setup>
    void add(const std::string& id,
             std::optional<std::string> title,
             const std::string& artist,
             Setup setup) {
        auto item = store.context().insertNewObject<Item>();
        item->itemID = id;
        item->title = std::move(title);
        item->artist = artist;
        setup(*item);
    }

    Ids where(const std::string& format, std::vector<PredicateArgument> arguments = {}) {
        return store.idsWhere(format, std::move(arguments));
    }

    StoreFixture store;
};

TEST_F(PredicateQueryTest, ContainsCaseAndDiacriticInsensitiveFoldsBothSides) {
    EXPECT_EQ(where("title CONTAINS[cd] %@", {"cafe"}), (Ids{"1", "3"}));
    EXPECT_EQ(where("title CONTAINS[cd] %@", {"CAFÉ"}), (Ids{"1", "3"}));
    EXPECT_EQ(where("title CONTAINS[cd] %@", {"arzte"}), (Ids{"2"}));
    EXPECT_EQ(where("artist CONTAINS[cd] %@", {"EMILE"}), (Ids{"1"}));
    EXPECT_EQ(where("artist CONTAINS[cd] %@", {"strasse"}), (Ids{"3"}));
    EXPECT_EQ(where("title CONTAINS[cd] %@ || artist CONTAINS[cd] %@", {"ärz", "ärz"}), (Ids{"2"}));
}

TEST_F(PredicateQueryTest, EachStringOptionFoldsOnlyItsOwnDifference) {
    EXPECT_EQ(where("title CONTAINS %@", {"cafe"}), Ids{});
    EXPECT_EQ(where("title CONTAINS %@", {"Café"}), (Ids{"1"}));
    EXPECT_EQ(where("title CONTAINS[c] %@", {"CAFÉ"}), (Ids{"1"}));
    EXPECT_EQ(where("title CONTAINS[d] %@", {"Cafe"}), (Ids{"1", "3"}));
    EXPECT_EQ(where("title CONTAINS[d] %@", {"cafe"}), Ids{});
    EXPECT_EQ(where("title BEGINSWITH[cd] %@", {"CAFE"}), (Ids{"1", "3"}));
    EXPECT_EQ(where("title BEGINSWITH %@", {"Society"}), Ids{});
    EXPECT_EQ(where("title ENDSWITH[c] %@", {"SOCIETY"}), (Ids{"3"}));
    EXPECT_EQ(where("title ==[cd] %@", {"cafe del mar"}), (Ids{"1"}));
}

TEST_F(PredicateQueryTest, TheEmptyTextIsInNoTextAndStartsOrEndsNone) {
    for (const std::string format :
         {"title CONTAINS %@", "title CONTAINS[cd] %@", "title CONTAINS[c] %@",
          "title BEGINSWITH %@", "title BEGINSWITH[cd] %@", "title ENDSWITH %@",
          "title ENDSWITH[d] %@"}) {
        EXPECT_EQ(where(format, {""}), Ids{}) << format;
        EXPECT_EQ(where("NOT (" + format + ")", {""}).size(), 5u) << format;
    }
    // So too a part that folds away to nothing: a lone combining accent.
    EXPECT_EQ(where("title CONTAINS[cd] %@", {"\u0301"}), Ids{});
    EXPECT_EQ(where("title BEGINSWITH[d] %@", {"\u0301"}), Ids{});
}

TEST_F(PredicateQueryTest, NilAttributesFollowTheAppsRules) {
    EXPECT_EQ(where("title == nil"), (Ids{"4"}));
    EXPECT_EQ(where("title == %@", {nullptr}), (Ids{"4"}));
    EXPECT_EQ(where("title != NULL"), (Ids{"1", "2", "3", "5"}));
    EXPECT_EQ(where("title != %@", {"Café del Mar"}), (Ids{"2", "3", "4", "5"}));
    EXPECT_EQ(where("NOT (title CONTAINS %@)", {"a"}), (Ids{"2", "4", "5"}));  // "Ärzte" has no "a"
    EXPECT_EQ(where("uploaderFollowersCount == nil"), (Ids{"2", "4", "5"}));
    EXPECT_EQ(where("uploaderFollowersCount == 0"), (Ids{"3"}));
    EXPECT_EQ(where("NOT uploaderFollowersCount > 1"), (Ids{"2", "3", "4", "5"}));
}

TEST_F(PredicateQueryTest, BooleansCompareAsZeroAndOneAndANilColumnIsNull) {
    EXPECT_EQ(where("cached == NULL || cached == 0"), (Ids{"1", "3", "4", "5"}));
    EXPECT_EQ(where("cached == NULL"), (Ids{"4"}));
    EXPECT_EQ(where("cached == 1"), (Ids{"2"}));
    EXPECT_EQ(where("cached == YES"), (Ids{"2"}));
    EXPECT_EQ(where("cached == %@", {true}), (Ids{"2"}));
    EXPECT_EQ(where("downloaded == %@ && isSong == 1", {true}), (Ids{"1", "4"}));
}

TEST_F(PredicateQueryTest, InTakesAnArrayAndAnEmptyArrayMatchesNothing) {
    EXPECT_EQ(where("itemID IN %@", {std::vector<std::string>{"5", "1", "nope"}}), (Ids{"1", "5"}));
    EXPECT_EQ(where("itemID IN %@", {std::vector<std::string>{}}), Ids{});
    EXPECT_EQ(where("NOT (itemID IN %@)", {std::vector<std::string>{}}),
              (Ids{"1", "2", "3", "4", "5"}));
    EXPECT_EQ(where("duration IN %@", {std::vector<std::int64_t>{100, 300}}), (Ids{"1", "3"}));
    EXPECT_EQ(where("(downloaded == 1) && (itemID IN %@)", {std::vector<std::string>{"2", "3"}}),
              (Ids{"2"}));
    EXPECT_EQ(where("artist IN[cd] %@", {std::vector<std::string>{"emile"}}), (Ids{"1"}));
}

TEST_F(PredicateQueryTest, OrderingComparisonsOnNumbersAndDates) {
    EXPECT_EQ(where("duration > 100"), (Ids{"2", "3"}));
    EXPECT_EQ(where("duration >= %@ && duration < %@", {100, 300}), (Ids{"1", "2"}));
    EXPECT_EQ(where("downloadDate <= %@", {1500.0}), (Ids{"1"}));
    EXPECT_EQ(where("150 < duration"), (Ids{"2", "3"}));
}

TEST_F(PredicateQueryTest, QuotesInLiteralsAndArgumentsAreData) {
    EXPECT_EQ(where("title == \"It's 'quoted'\""), (Ids{"5"}));
    EXPECT_EQ(where("artist == %@", {"O'Neil"}), (Ids{"5"}));
    EXPECT_EQ(where("itemID == %@", {"x' OR 1=1 --"}), Ids{});
    EXPECT_EQ(where("TRUEPREDICATE").size(), 5u);
    EXPECT_EQ(where("FALSEPREDICATE"), Ids{});
}

TEST_F(PredicateQueryTest, CompoundOfSubpredicatesAsTheOfflineSearchBuildsIt) {
    auto search = [&](const std::string& query) {
        FetchRequest request = FetchRequest::fetchRequestWithEntityName("Item");
        request.predicate = Predicate::andPredicateWithSubpredicates({
            Predicate::withFormat("downloaded == 1"),
            Predicate::withFormat("isSong == 1 || isAlbum == 1 || isAlbumTrack == 1"),
            Predicate::withFormat("title CONTAINS[cd] %@ || artist CONTAINS[cd] %@",
                                  {query, query}),
            Predicate::withFormat("cached == NULL || cached == 0"),
        });
        return StoreFixture::idsOf(*store.context().fetch<Item>(request));
    };
    EXPECT_EQ(search("cafe"), (Ids{"1"}));  // 3 is not downloaded
    EXPECT_EQ(search("PLAIN"), (Ids{"4"}));
    EXPECT_EQ(search("ärzte"), Ids{});  // 2 is in the playback cache
    auto either =
        Predicate::orPredicateWithSubpredicates({Predicate::withFormat("itemID == %@", {"3"}),
                                                 Predicate::withFormat("itemID == %@", {"5"})});
    FetchRequest request = FetchRequest::fetchRequestWithEntityName("Item");
    request.predicate = Predicate::notPredicateWithSubpredicate(either);
    EXPECT_EQ(StoreFixture::idsOf(*store.context().fetch<Item>(request)), (Ids{"1", "2", "4"}));
}

using PredicateQueryDeathTest = PredicateQueryTest;

TEST_F(PredicateQueryDeathTest, ANameThatIsNoAttributeIsAProgrammingFault) {
    EXPECT_DEATH(where("titel == %@", {"a"}),
                 "names 'titel', which is not an attribute of the entity Item");
}

}  // namespace
}  // namespace tb::test

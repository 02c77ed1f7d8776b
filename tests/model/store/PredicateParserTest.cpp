#include <string>
#include <vector>

#include "model/store/Predicate.h"
#include "model/store/PredicateNode.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

std::string canonical(const std::string& format, std::vector<PredicateArgument> arguments = {}) {
    return Predicate::withFormat(format, std::move(arguments)).root().description();
}

TEST(PredicateParserTest, ComparisonOperatorsAndTheirAliases) {
    EXPECT_EQ(canonical("itemID == %@", {"a"}), "itemID == %@");
    EXPECT_EQ(canonical("duration = 1"), "duration == 1");
    EXPECT_EQ(canonical("duration != 1"), "duration != 1");
    EXPECT_EQ(canonical("duration <> 1"), "duration != 1");
    EXPECT_EQ(canonical("duration < 1"), "duration < 1");
    EXPECT_EQ(canonical("duration <= 1"), "duration <= 1");
    EXPECT_EQ(canonical("duration =< 1"), "duration <= 1");
    EXPECT_EQ(canonical("duration > 1"), "duration > 1");
    EXPECT_EQ(canonical("duration >= 1"), "duration >= 1");
    EXPECT_EQ(canonical("duration => 1"), "duration >= 1");
    EXPECT_EQ(canonical("itemID IN %@", {std::vector<std::string>{"a"}}), "itemID IN %@");
    EXPECT_EQ(canonical("title CONTAINS %@", {"a"}), "title CONTAINS %@");
    EXPECT_EQ(canonical("title BEGINSWITH[c] %@", {"a"}), "title BEGINSWITH[c] %@");
    EXPECT_EQ(canonical("title endswith[d] %@", {"a"}), "title ENDSWITH[d] %@");
    EXPECT_EQ(canonical("title CONTAINS[cd] %@", {"a"}), "title CONTAINS[cd] %@");
    EXPECT_EQ(canonical("title ==[c] %@", {"a"}), "title ==[c] %@");
}

TEST(PredicateParserTest, LiteralsOfEveryKind) {
    EXPECT_EQ(canonical("cached == YES || cached == true || cached == TRUE"),
              "(cached == 1 OR cached == 1 OR cached == 1)");
    EXPECT_EQ(canonical("cached == NO || cached == false"), "(cached == 0 OR cached == 0)");
    EXPECT_EQ(canonical("cached == NULL || cached == nil"), "(cached == NULL OR cached == NULL)");
    EXPECT_EQ(canonical("type == \"song\" || type == 'album'"),
              "(type == \"song\" OR type == \"album\")");
    EXPECT_EQ(canonical("title == 'it\\'s'"), "title == \"it's\"");
    EXPECT_EQ(canonical("duration > -12 && downloadDate < 2.5"),
              "(duration > -12 AND downloadDate < 2.5)");
    EXPECT_EQ(canonical("%d < duration", {3}), "%@ < duration");
}

TEST(PredicateParserTest, LogicFollowsNotAndOrPrecedenceInAnyCase) {
    EXPECT_EQ(canonical("isSong == 1 || isAlbum == 1 && cached == 0"),
              "(isSong == 1 OR (isAlbum == 1 AND cached == 0))");
    EXPECT_EQ(canonical("(isSong == 1 || isAlbum == 1) and not cached == 0"),
              "((isSong == 1 OR isAlbum == 1) AND NOT cached == 0)");
    EXPECT_EQ(canonical("!(synced == 1) OR NOT(cached == 1)"),
              "(NOT synced == 1 OR NOT cached == 1)");
    EXPECT_EQ(canonical("TRUEPREDICATE"), "TRUEPREDICATE");
    EXPECT_EQ(canonical("falsepredicate"), "FALSEPREDICATE");
}

TEST(PredicateParserTest, TheAppsOwnFormatsParse) {
    EXPECT_EQ(canonical("(downloaded == 1) && (isSong == 1 || isAlbum == 1 || "
                        "albumTrackDownloadedAsSingle == 1) "
                        "&& (cached == NULL || cached == 0) && (synced == NULL || synced == 0)"),
              "(downloaded == 1 AND (isSong == 1 OR isAlbum == 1 OR albumTrackDownloadedAsSingle "
              "== 1) AND "
              "(cached == NULL OR cached == 0) AND (synced == NULL OR synced == 0))");
    EXPECT_EQ(
        canonical(
            "(downloaded == 1 || downloadCompleted == 1) && (cached == NULL || cached == 0) && "
            "(isPlaylist == 0 || isPlaylist == NULL)"),
        "((downloaded == 1 OR downloadCompleted == 1) AND (cached == NULL OR cached == 0) AND "
        "(isPlaylist == 0 OR isPlaylist == NULL))");
    EXPECT_EQ(canonical("playlistId == %@ && trackId == %@", {"p", "t"}),
              "(playlistId == %@ AND trackId == %@)");
}

TEST(PredicateParserTest, OneFormatIsParsedOnceAndSharedByItsPredicates) {
    auto first = Predicate::withFormat("itemID == %@", {"a"});
    auto second = Predicate::withFormat("itemID == %@", {"b"});
    EXPECT_EQ(&first.root(), &second.root());
    EXPECT_EQ(first.key(), second.key());
    EXPECT_EQ(second.description(), "itemID == \"b\"");
}

TEST(PredicateParserTest, CompoundKeepsEachPartsArgumentsInOrder) {
    auto search = Predicate::andPredicateWithSubpredicates({
        Predicate::withFormat("downloaded == 1"),
        Predicate::withFormat("title CONTAINS[cd] %@ || artist CONTAINS[cd] %@", {"x", "y"}),
        Predicate::withFormat("itemID IN %@", {std::vector<std::string>{"1", "2"}}),
    });
    EXPECT_EQ(search.description(),
              "(downloaded == 1 AND (title CONTAINS[cd] \"x\" OR artist CONTAINS[cd] \"y\") AND "
              "itemID IN {\"1\", \"2\"})");
    ASSERT_EQ(search.arguments().size(), 3u);
    EXPECT_TRUE(search.arguments()[2].isArray());
    EXPECT_NE(search.key(), Predicate::withFormat("downloaded == 1").key());
}

using PredicateParserDeathTest = ::testing::Test;

TEST(PredicateParserDeathTest, MalformedFormatsStopTheProcessNamingFormatAndPosition) {
    EXPECT_DEATH(Predicate::withFormat(""),
                 "predicate format \"\": the format is empty at position 0");
    EXPECT_DEATH(Predicate::withFormat("itemID =="),
                 "\"itemID ==\": expected an attribute.*at position 9");
    EXPECT_DEATH(Predicate::withFormat("(cached == 1"), "expected '\\)' at position 12");
    EXPECT_DEATH(Predicate::withFormat("cached == 1 synced"), "unexpected text at position 12");
    EXPECT_DEATH(Predicate::withFormat("title LIKE %@", {"a"}),
                 "expected a comparison operator at position 6");
    EXPECT_DEATH(Predicate::withFormat("title CONTAINS[x] %@", {"a"}),
                 "unknown comparison option at position 15");
    EXPECT_DEATH(Predicate::withFormat("title == 'abc"), "unterminated string at position 9");
    EXPECT_DEATH(Predicate::withFormat("album.title == 1"),
                 "relationships are not supported at position 5");
    EXPECT_DEATH(Predicate::withFormat("itemID IN 'a'"),
                 "IN needs %@ \\(an array argument\\) on its right");
    EXPECT_DEATH(Predicate::withFormat("title == %K", {"a"}),
                 "unsupported format specifier at position 9");
    EXPECT_DEATH(Predicate::withFormat("duration == 1.2.3"), "malformed number at position 12");
    EXPECT_DEATH(Predicate::withFormat("== 1"),
                 "expected an attribute, a value or %@ at position 0");
}

TEST(PredicateParserDeathTest, ArgumentsMustMatchThePlaceholders) {
    EXPECT_DEATH(Predicate::withFormat("itemID == %@"), "takes 1 arguments, but 0 were given");
    EXPECT_DEATH(Predicate::withFormat("itemID IN %@", {"a"}), "argument 1 must be an array");
    EXPECT_DEATH(Predicate::withFormat("itemID == %@", {std::vector<std::string>{"a"}}),
                 "argument 1 must not be an array");
}

}  // namespace
}  // namespace tb

#include <nlohmann/json.hpp>

#include "api/FormParameters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::ElementsAre;
using ::testing::Optional;

TEST(FormParametersTest, FlattensNestedValuesTheFormWay) {
    const auto parameters = nlohmann::json::parse(R"({
        "title": "Mix",
        "entities": [{"kind": "song", "id": "42"}, {"kind": "album", "id": "7", "position": 2}],
        "filter": {"genre": "rap", "tags": ["a", "b"]}
    })");

    EXPECT_THAT(flattenFormParameters(parameters),
                ElementsAre(FormPair{"entities[][id]", "42"}, FormPair{"entities[][kind]", "song"},
                            FormPair{"entities[][id]", "7"}, FormPair{"entities[][kind]", "album"},
                            FormPair{"entities[][position]", "2"}, FormPair{"filter[genre]", "rap"},
                            FormPair{"filter[tags][]", "a"}, FormPair{"filter[tags][]", "b"},
                            FormPair{"title", "Mix"}));
}

TEST(FormParametersTest, ScalarsBecomeTheirText) {
    const auto parameters = nlohmann::json::parse(
        R"({"a": true, "b": false, "c": 12, "d": -3, "e": 2.5, "f": 4.0, "g": null, "h": [], "i": {}})");

    EXPECT_THAT(flattenFormParameters(parameters),
                ElementsAre(FormPair{"a", "1"}, FormPair{"b", "0"}, FormPair{"c", "12"},
                            FormPair{"d", "-3"}, FormPair{"e", "2.5"}, FormPair{"f", "4"},
                            FormPair{"g", std::nullopt}));
    EXPECT_TRUE(flattenFormParameters(nlohmann::json()).empty());
    EXPECT_TRUE(flattenFormParameters(nlohmann::json::array({1, 2})).empty());
}

TEST(FormParametersTest, QueryStringEscapesKeysAndValuesApart) {
    const FormPairs pairs = {{"entities[][kind]", "song"},
                             {"q", "a+b c/d[e]&f=g~h"},
                             {"flag", std::nullopt},
                             {"n\xC3\xBC", "\xC3\xBC"}};

    EXPECT_EQ(formQueryString(pairs),
              "entities[][kind]=song&q=a%2Bb%20c%2Fd%5Be%5D%26f%3Dg~h&flag&n%C3%BC=%C3%BC");
    EXPECT_EQ(formQueryString({}), "");
}

TEST(FormParametersTest, ParsesQueryItemsKeepingPlusSigns) {
    EXPECT_THAT(parseQueryItems("name=Rock%20%2B%20Roll&x=a+b&empty=&flag&=v"),
                Optional(ElementsAre(FormPair{"name", "Rock + Roll"}, FormPair{"x", "a+b"},
                                     FormPair{"empty", ""}, FormPair{"flag", std::nullopt},
                                     FormPair{"", "v"})));
    EXPECT_THAT(parseQueryItems(""), Optional(ElementsAre()));
}

TEST(FormParametersTest, TextThatIsNoValidQueryGivesNoItems) {
    EXPECT_EQ(parseQueryItems("a=b c"), std::nullopt);
    EXPECT_EQ(parseQueryItems("a=%zz"), std::nullopt);
    EXPECT_EQ(parseQueryItems("a=%4"), std::nullopt);
    EXPECT_EQ(parseQueryItems("a[]=1"), std::nullopt);
    EXPECT_EQ(parseQueryItems("a=\xC3\xBC"), std::nullopt);
}

}  // namespace
}  // namespace tb

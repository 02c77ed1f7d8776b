#include "tunebrook-service/core/PercentCodec.h"
#include "tunebrook-service/http/FormParams.h"
#include "tunebrook-service/http/IdText.h"
#include "tunebrook-service/http/Paging.h"
#include "tunebrook-service/routes/HighlightEntities.h"

#include <gtest/gtest.h>

namespace tb::service {
namespace {

TEST(FormParamsTest, KeepsOrderNamesAsWrittenAndBareNamesAndRefusesBrokenEscapesAndFloods) {
    auto params = FormParams::parse("entities%5B%5D%5Bkind%5D=song&q=a%20b+c&flag&&x=%2B");
    ASSERT_TRUE(params);
    ASSERT_EQ(params->size(), 4u);
    EXPECT_EQ((*params)[0].name, "entities[][kind]");
    EXPECT_EQ((*params)[1].value, "a b c");  // "+" is a space, as in any form
    EXPECT_FALSE((*params)[2].hasValue);
    EXPECT_TRUE((*params)[3].hasValue);
    EXPECT_EQ((*params)[3].value, "+");

    EXPECT_FALSE(FormParams::parse("a=%4"));
    EXPECT_FALSE(FormParams::parse("a=%zz"));
    EXPECT_FALSE(FormParams::parse("%=1"));
    std::string flood;
    for (size_t i = 0; i <= FormParams::kMaxParams; ++i) {
        flood += "a=1&";
    }
    EXPECT_FALSE(FormParams::parse(flood));
}

TEST(PercentCodecTest, EncodesEverythingButUnreservedInUpperCaseHex) {
    EXPECT_EQ(PercentCodec::encodeUnreserved("a-b._~ +/=&\xc3\xa9"), "a-b._~%20%2B%2F%3D%26%C3%A9");
    EXPECT_EQ(PercentCodec::decode("%C3%a9%2B"), "\xc3\xa9+");
}

TEST(PagingTest, TokensCarryTheOffsetAndNothingElseIsAToken) {
    EXPECT_EQ(Paging::decodeToken(Paging::token(40)), 40);
    EXPECT_EQ(Paging::decodeToken(Paging::token(0)), 0);
    for (const char* token :
         {"", "40", "b2Zmc2V0Oi0x", "!!!!", "b2Zmc2V0OjE=b2Zm", "ZXZpbDoxMA=="}) {
        EXPECT_FALSE(Paging::decodeToken(token)) << token;
    }
}

TEST(IdTextTest, OnlyDecimalTextIsAnId) {
    EXPECT_EQ(IdText::parse("10001"), 10001);
    for (const char* text : {"", "../1", "1e3", "-1", " 1", "1234567890123456789"}) {
        EXPECT_FALSE(IdText::parse(text)) << text;
    }
    EXPECT_EQ(IdText::split("1,2,,3", 10)->size(), 4u);
    EXPECT_FALSE(IdText::split("1,2,3", 2));
}

TEST(HighlightEntitiesTest, ReadsJsonTextFlattenedFieldsAndJsonBodiesInPositionOrder) {
    auto fromText = HighlightEntities::read(
        {{"entities",
          R"([{"kind":"song","id":"5","position":1},{"kind":"album","id":7,"position":0}])"}},
        "application/x-www-form-urlencoded", "");
    ASSERT_TRUE(fromText);
    ASSERT_EQ(fromText->size(), 2u);
    EXPECT_EQ((*fromText)[0].kind, "album");
    EXPECT_EQ((*fromText)[1].id, 5);

    auto flattened = HighlightEntities::read({{"entities[][id]", "5"},
                                              {"entities[][kind]", "song"},
                                              {"entities[][id]", "9"},
                                              {"entities[][kind]", "playlist"}},
                                             "application/x-www-form-urlencoded", "");
    ASSERT_TRUE(flattened);
    ASSERT_EQ(flattened->size(), 2u);
    EXPECT_EQ((*flattened)[1].kind, "playlist");
    EXPECT_EQ((*flattened)[1].id, 9);

    auto body = HighlightEntities::read({}, "application/json",
                                        R"({"entities":[{"kind":"playlist","id":"3"}]})");
    ASSERT_TRUE(body);
    EXPECT_EQ(body->front().id, 3);
}

TEST(HighlightEntitiesTest, RefusesUnknownKindsBadIdsAndBrokenText) {
    for (const char* text : {R"([{"kind":"video","id":"5"}])", R"([{"kind":"song","id":"../5"}])",
                             R"([{"kind":"song"}])", R"({"kind":"song","id":"5"})", "[1,2]", "[",
                             R"([{"kind":"song","id":"5","position":"x"}])"}) {
        EXPECT_FALSE(HighlightEntities::read({{"entities", text}}, "", "")) << text;
    }
    EXPECT_FALSE(HighlightEntities::read({}, "application/x-www-form-urlencoded", ""));
    EXPECT_FALSE(HighlightEntities::read({{"entities[x", "1"}}, "", ""));
}

}  // namespace
}  // namespace tb::service

#include <cstdint>
#include <limits>
#include <string>

#include <nlohmann/json.hpp>

#include "platform/JSON.h"
#include "platform/JsonLimits.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();

JSON value(const char* text) {
    const JSON parsed = JSON::parse(text);
    EXPECT_TRUE(parsed.exists()) << text;
    return parsed;
}

TEST(JSONTest, MissingKeysIndexesAndWrongContainersReadAsNullThatDoesNotExist) {
    const JSON json = value(R"({"a": {"b": [1, null]}, "n": null})");

    EXPECT_TRUE(json["a"]["b"][0].exists());
    EXPECT_FALSE(json["missing"].exists());
    EXPECT_FALSE(json["a"]["missing"]["deeper"].exists());
    EXPECT_FALSE(json["a"]["b"][2].exists());
    EXPECT_FALSE(json["a"]["b"][-1].exists());
    EXPECT_FALSE(json["a"][0].exists());           // a dictionary asked by index
    EXPECT_FALSE(json["a"]["b"]["key"].exists());  // an array asked by key
    EXPECT_TRUE(json["missing"].isNull());

    // A null that is present exists; so does one inside an array.
    EXPECT_TRUE(json["n"].exists());
    EXPECT_TRUE(json["n"].isNull());
    EXPECT_TRUE(json["a"]["b"][1].exists());
    EXPECT_FALSE(JSON().exists());
}

TEST(JSONTest, TypeTestsAndOptionalReadersAnswerOnlyForTheirKind) {
    const JSON json = value(R"({"s": "12", "i": 12, "f": 1.5, "b": true, "a": [1], "d": {}})");

    EXPECT_EQ(json["s"].type(), JSON::Type::string);
    EXPECT_EQ(json["i"].type(), JSON::Type::number);
    EXPECT_EQ(json["f"].type(), JSON::Type::number);
    EXPECT_EQ(json["b"].type(), JSON::Type::boolean);
    EXPECT_TRUE(json["a"].isArray());
    EXPECT_TRUE(json["d"].isDictionary());

    EXPECT_EQ(json["s"].string(), "12");
    EXPECT_EQ(json["i"].string(), std::nullopt);
    EXPECT_EQ(json["s"].int64(), std::nullopt);
    EXPECT_EQ(json["i"].int64(), 12);
    EXPECT_EQ(json["f"].int64(), 1);
    EXPECT_EQ(json["b"].int64(), 1);  // a bool is a number box of 1
    EXPECT_EQ(json["f"].number(), 1.5);
    EXPECT_EQ(json["s"].number(), std::nullopt);
    EXPECT_EQ(json["b"].boolean(), true);
    EXPECT_EQ(json["i"].boolean(), std::nullopt);
    EXPECT_TRUE(json["a"].array().has_value());
    EXPECT_FALSE(json["d"].array().has_value());
    EXPECT_TRUE(json["d"].dictionary().has_value());
    EXPECT_FALSE(json["missing"].dictionary().has_value());
}

TEST(JSONTest, StringValueDescribesNumbersAndBools) {
    const JSON json = value(R"({"s": "text", "i": -42, "u": 18446744073709551615,
        "whole": 3.0, "f": 0.1, "sum": 1234.5, "big": 1e22, "small": 0.0001,
        "t": true, "f0": false, "n": null, "a": ["x"], "d": {"k": "v"}})");

    EXPECT_EQ(json["s"].stringValue(), "text");
    EXPECT_EQ(json["i"].stringValue(), "-42");
    EXPECT_EQ(json["u"].stringValue(), "18446744073709551615");
    EXPECT_EQ(json["whole"].stringValue(), "3");
    EXPECT_EQ(json["f"].stringValue(), "0.1");
    EXPECT_EQ(json["sum"].stringValue(), "1234.5");
    EXPECT_EQ(json["big"].stringValue(), "1e+22");
    EXPECT_EQ(json["small"].stringValue(), "0.0001");
    EXPECT_EQ(json["t"].stringValue(), "true");
    EXPECT_EQ(json["f0"].stringValue(), "false");
    EXPECT_EQ(json["n"].stringValue(), "");
    EXPECT_EQ(json["a"].stringValue(), "");
    EXPECT_EQ(json["d"].stringValue(), "");
    EXPECT_EQ(json["missing"].stringValue(), "");
}

TEST(JSONTest, BoolValueAcceptsNumbersAndTheWordsOfTruthInAnyCase) {
    const JSON json = value(R"({"t": true, "one": 1, "half": 0.5, "zero": 0, "zf": 0.0,
        "yes": "YES", "y": "y", "T": "T", "true": "True", "1": "1",
        "no": "no", "2": "2", "on": "on", "empty": "", "a": [1], "n": null})");

    for (const char* key : {"t", "one", "half", "yes", "y", "T", "true", "1"}) {
        EXPECT_TRUE(json[key].boolValue()) << key;
    }
    for (const char* key : {"zero", "zf", "no", "2", "on", "empty", "a", "n", "missing"}) {
        EXPECT_FALSE(json[key].boolValue()) << key;
    }
}

TEST(JSONTest, IntValueTruncatesParsesTextAndSaturates) {
    const JSON json = value(R"({"i": 7, "neg": -7.9, "f": 7.9, "t": true, "b": false,
        "text": "42", "textFraction": " 12.7kg", "textNeg": "-3", "textExp": "1.5e3",
        "textDot": ".9", "word": "abc", "empty": "", "a": [1], "d": {"x": 1},
        "huge": 1e400, "hugeNeg": -1e400, "bigInt": 9999999999999999999999,
        "bigText": "9999999999999999999999", "bigNegText": "-9999999999999999999999",
        "maxText": "9223372036854775807", "minText": "-9223372036854775808",
        "u": 18446744073709551615, "expText": "1e99999999999"})");

    EXPECT_EQ(json["i"].intValue(), 7);
    EXPECT_EQ(json["neg"].intValue(), -7);
    EXPECT_EQ(json["f"].int64Value(), 7);
    EXPECT_EQ(json["t"].intValue(), 1);
    EXPECT_EQ(json["b"].intValue(), 0);
    EXPECT_EQ(json["text"].intValue(), 42);
    EXPECT_EQ(json["textFraction"].intValue(), 12);
    EXPECT_EQ(json["textNeg"].intValue(), -3);
    EXPECT_EQ(json["textExp"].intValue(), 1500);
    EXPECT_EQ(json["textDot"].intValue(), 0);
    EXPECT_EQ(json["word"].intValue(), 0);
    EXPECT_EQ(json["empty"].intValue(), 0);
    EXPECT_EQ(json["a"].intValue(), 0);
    EXPECT_EQ(json["d"].intValue(), 0);
    EXPECT_EQ(json["missing"].intValue(), 0);

    EXPECT_EQ(json["huge"].int64Value(), kMax);
    EXPECT_EQ(json["hugeNeg"].int64Value(), kMin);
    EXPECT_EQ(json["bigInt"].int64Value(), kMax);
    EXPECT_EQ(json["bigText"].int64Value(), kMax);
    EXPECT_EQ(json["bigNegText"].int64Value(), kMin);
    EXPECT_EQ(json["maxText"].int64Value(), kMax);
    EXPECT_EQ(json["minText"].int64Value(), kMin);
    EXPECT_EQ(json["u"].int64Value(), kMax);
    EXPECT_EQ(json["expText"].int64Value(), kMax);
}

TEST(JSONTest, IntegerTextIsReadExactlyBeyondDoublePrecision) {
    // 2^53 + 1 has no double; a text of it must not come back as 2^53.
    EXPECT_EQ(value(R"({"v": "9007199254740993"})")["v"].int64Value(), 9007199254740993LL);
    EXPECT_EQ(value(R"({"v": 9007199254740993})")["v"].int64Value(), 9007199254740993LL);
}

TEST(JSONTest, DoubleValueReadsNumbersTextAndBools) {
    const JSON json = value(R"({"f": 2.25, "i": 3, "t": true, "text": "-0.5x",
        "exp": "2E-3", "tiny": "1e-99999", "huge": "1e400", "word": "nan", "n": null,
        "inf": 1e400, "minf": -1e400})");

    EXPECT_DOUBLE_EQ(json["f"].doubleValue(), 2.25);
    EXPECT_DOUBLE_EQ(json["i"].doubleValue(), 3.0);
    EXPECT_DOUBLE_EQ(json["t"].doubleValue(), 1.0);
    EXPECT_DOUBLE_EQ(json["text"].doubleValue(), -0.5);
    EXPECT_DOUBLE_EQ(json["exp"].doubleValue(), 0.002);
    EXPECT_DOUBLE_EQ(json["tiny"].doubleValue(), 0.0);
    EXPECT_EQ(json["huge"].doubleValue(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(json["word"].doubleValue(), 0.0);
    EXPECT_EQ(json["n"].doubleValue(), 0.0);
    // Out of range numbers in the document itself saturate at the largest double.
    EXPECT_EQ(json["inf"].doubleValue(), std::numeric_limits<double>::max());
    EXPECT_EQ(json["minf"].doubleValue(), -std::numeric_limits<double>::max());
}

TEST(JSONTest, ContainersAndCount) {
    const JSON json = value(R"({"a": [1, "two", null], "d": {"x": 1, "y": [2]}, "s": "abc"})");

    const auto elements = json["a"].arrayValue();
    ASSERT_EQ(elements.size(), 3u);
    EXPECT_EQ(elements[1].stringValue(), "two");
    EXPECT_TRUE(elements[2].isNull());
    EXPECT_EQ(json["a"].count(), 3u);

    const auto entries = json["d"].dictionaryValue();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries.at("y")[0].intValue(), 2);
    EXPECT_EQ(json["d"].count(), 2u);

    EXPECT_TRUE(json["s"].arrayValue().empty());
    EXPECT_TRUE(json["a"].dictionaryValue().empty());
    EXPECT_EQ(json["s"].count(), 0u);
    EXPECT_EQ(json["missing"].count(), 0u);
}

TEST(JSONTest, ChildrenOutliveTheirParentView) {
    JSON child;
    {
        const JSON root = value(R"({"deep": {"name": "kept"}})");
        child = root["deep"];
    }
    EXPECT_EQ(child["name"].stringValue(), "kept");
}

TEST(JSONTest, ConstructedFromALibraryValue) {
    nlohmann::json built = {{"id", 5}, {"list", {1, 2}}};
    const JSON json(built);
    EXPECT_EQ(json["id"].stringValue(), "5");
    EXPECT_EQ(json["list"].count(), 2u);
    EXPECT_EQ(json.raw(), built);
    EXPECT_EQ(JSON(nlohmann::json(built)), json);
    EXPECT_EQ(JSON().raw(), nlohmann::json());
}

TEST(JSONTest, MalformedTextParsesAsNull) {
    for (const char* text : {"", "{", "{\"a\":}", "[1,]", "nope", "{\"a\" 1}", "\"unterminated"}) {
        EXPECT_FALSE(JSON::parse(text).exists()) << text;
    }
}

TEST(JSONTest, NestingDeeperThanTheLimitIsRefusedAndTheLimitItselfIsAccepted) {
    const auto nested = [](int depth) {
        return std::string(static_cast<size_t>(depth), '[') +
               std::string(static_cast<size_t>(depth), ']');
    };
    EXPECT_TRUE(JSON::parse(nested(kMaxJsonDepth)).exists());
    EXPECT_FALSE(JSON::parse(nested(kMaxJsonDepth + 1)).exists());
    EXPECT_FALSE(JSON::parse(nested(1000000)).exists());

    // Half a million unclosed brackets must not reach the parser either.
    EXPECT_FALSE(JSON::parse(std::string(500000, '{')).exists());
}

TEST(JSONTest, InvalidUtf8IsReplacedWhenParsingAndWhenDumping) {
    const std::string replacement = "\xef\xbf\xbd";  // U+FFFD
    const JSON bad = JSON::parse("{\"name\": \"bad \xff\xfe byte\", \"id\": \"kept\"}");
    EXPECT_EQ(bad["name"].stringValue(), "bad " + replacement + replacement + " byte");
    EXPECT_EQ(bad["id"].stringValue(), "kept");
    // A character cut short before the closing quote doesn't swallow the quote.
    EXPECT_EQ(JSON::parse("{\"name\": \"cut \xe2\x82\"}")["name"].stringValue(),
              "cut " + replacement);
    EXPECT_EQ(JSON::parse("[\"\xc0\xaf\"]")[0].stringValue(),
              replacement + replacement);  // overlong "/" is no slash
    EXPECT_EQ(JSON::parse("{\"name\": \"caf\xc3\xa9\"}")["name"].stringValue(), "caf\xc3\xa9");
    // A bad byte outside any string is still no JSON.
    EXPECT_FALSE(JSON::parse("{\"name\": 1}\xff").exists());
    EXPECT_FALSE(JSON::parse("[1, \xff]").exists());

    // A value built in code can hold any bytes; writing it out must not throw.
    const JSON built(nlohmann::json{{"name", std::string("bad \xff byte")}});
    const std::string text = built.dump();
    EXPECT_NE(text.find("\xef\xbf\xbd"), std::string::npos);  // U+FFFD
    EXPECT_EQ(built["name"].stringValue(), "bad \xff byte");
}

TEST(JSONTest, OutOfRangeNumbersSaturateAndKeepTheRestOfTheDocument) {
    const JSON json = value(R"([1e400, -1e400, 9999999999999999999999, -9999999999999999999999,
        "1e400 in a string", {"id": "kept", "n": -1E+400}])");

    EXPECT_EQ(json[0].intValue(), kMax);
    EXPECT_EQ(json[1].intValue(), kMin);
    EXPECT_EQ(json[2].intValue(), kMax);
    EXPECT_EQ(json[3].intValue(), kMin);
    EXPECT_TRUE(json[0].boolValue());
    EXPECT_EQ(json[0].stringValue(), "1.7976931348623157e+308");
    EXPECT_EQ(json[2].stringValue(), "1e+22");
    EXPECT_EQ(json[4].stringValue(), "1e400 in a string");
    EXPECT_EQ(json[5]["id"].stringValue(), "kept");
    EXPECT_EQ(json[5]["n"].int64Value(), kMin);
    // Four hundred digits overflow a double the same way.
    const JSON digits = JSON::parse("[" + std::string(400, '9') + "]");
    EXPECT_EQ(digits[0].int64Value(), kMax);
    EXPECT_NO_THROW((void)json.dump());
}

TEST(JSONTest, DumpIsCompactAndMissingDumpsAsNull) {
    EXPECT_EQ(value(R"({"b": [1, "x"], "a": null})").dump(), R"({"a":null,"b":[1,"x"]})");
    EXPECT_EQ(JSON().dump(), "null");
}

TEST(JSONTest, NumberDescriptionRule) {
    EXPECT_EQ(JSON::numberDescription(0.0), "0");
    EXPECT_EQ(JSON::numberDescription(-5.0), "-5");
    EXPECT_EQ(JSON::numberDescription(123456789.0), "123456789");
    EXPECT_EQ(JSON::numberDescription(9007199254740992.0), "9007199254740992");
    EXPECT_EQ(JSON::numberDescription(1e16), "1e+16");
    EXPECT_EQ(JSON::numberDescription(2.5), "2.5");
    EXPECT_EQ(JSON::numberDescription(1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(JSON::numberDescription(1e-7), "1e-07");
}

}  // namespace
}  // namespace tb

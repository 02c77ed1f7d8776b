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

// One value of a document, with what each value reader makes of it.
struct ReadCase {
    const char* key;
    std::string text;
    std::int64_t int64;
    double real;
    bool truth;
};

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kDoubleMax = std::numeric_limits<double>::max();

class JSONValueReadersTest : public testing::TestWithParam<ReadCase> {
  protected:
    // Numbers out of a double's range saturate at the largest double; integer text beyond
    // 2^53 is read exactly; text is read by its leading decimal number.
    static inline const JSON document = JSON::parse(R"({
        "s": "text", "i": -42, "u": 18446744073709551615, "whole": 3.0, "f": 0.1,
        "sum": 1234.5, "big": 1e22, "small": 0.0001, "t": true, "f0": false, "n": null,
        "a": ["x"], "d": {"k": "v"}, "neg": -7.9, "half": 0.5, "zero": 0, "zf": 0.0,
        "YES": "YES", "y": "y", "T": "T", "True": "True", "one": "1", "no": "no", "two": "2",
        "on": "on", "empty": "", "42": "42", "kg": " 12.7kg", "-3": "-3", "exp": "1.5e3",
        "dot": ".9", "word": "abc", "huge": 1e400, "hugeNeg": -1e400,
        "bigInt": 9999999999999999999999, "bigText": "9999999999999999999999",
        "bigNegText": "-9999999999999999999999", "maxText": "9223372036854775807",
        "minText": "-9223372036854775808", "expText": "1e99999999999", "half-": "-0.5x",
        "2E-3": "2E-3", "tiny": "1e-99999", "hugeText": "1e400", "nan": "nan",
        "exactText": "9007199254740993", "exact": 9007199254740993, "2.25": 2.25,
        "negBigInt": -9999999999999999999999, "negHugeE": -1E+400})");
};

TEST_P(JSONValueReadersTest, ReadsTheValue) {
    const auto& c = GetParam();
    const JSON json = document[c.key];
    EXPECT_EQ(json.stringValue(), c.text);
    EXPECT_EQ(json.int64Value(), c.int64);
    EXPECT_EQ(json.intValue(), c.int64);
    EXPECT_EQ(json.doubleValue(), c.real);
    EXPECT_EQ(json.boolValue(), c.truth);
}

INSTANTIATE_TEST_SUITE_P(
    Values,
    JSONValueReadersTest,
    testing::Values(
        ReadCase{"s", "text", 0, 0, false},
        ReadCase{"i", "-42", -42, -42, true},
        ReadCase{"u", "18446744073709551615", kMax, 18446744073709551615.0, true},
        ReadCase{"whole", "3", 3, 3, true},
        ReadCase{"f", "0.1", 0, 0.1, true},
        ReadCase{"sum", "1234.5", 1234, 1234.5, true},
        ReadCase{"big", "1e+22", kMax, 1e22, true},
        ReadCase{"small", "0.0001", 0, 0.0001, true},
        ReadCase{"t", "true", 1, 1, true},
        ReadCase{"f0", "false", 0, 0, false},
        ReadCase{"n", "", 0, 0, false},
        ReadCase{"a", "", 0, 0, false},
        ReadCase{"d", "", 0, 0, false},
        ReadCase{"missing", "", 0, 0, false},
        ReadCase{"neg", "-7.9", -7, -7.9, true},
        ReadCase{"half", "0.5", 0, 0.5, true},
        ReadCase{"zero", "0", 0, 0, false},
        ReadCase{"zf", "0", 0, 0, false},
        ReadCase{"YES", "YES", 0, 0, true},
        ReadCase{"y", "y", 0, 0, true},
        ReadCase{"T", "T", 0, 0, true},
        ReadCase{"True", "True", 0, 0, true},
        ReadCase{"one", "1", 1, 1, true},
        ReadCase{"no", "no", 0, 0, false},
        ReadCase{"two", "2", 2, 2, false},
        ReadCase{"on", "on", 0, 0, false},
        ReadCase{"empty", "", 0, 0, false},
        ReadCase{"42", "42", 42, 42, false},
        ReadCase{"kg", " 12.7kg", 12, 12.7, false},
        ReadCase{"-3", "-3", -3, -3, false},
        ReadCase{"exp", "1.5e3", 1500, 1500, false},
        ReadCase{"dot", ".9", 0, 0.9, false},
        ReadCase{"word", "abc", 0, 0, false},
        ReadCase{"huge", "1.7976931348623157e+308", kMax, kDoubleMax, true},
        ReadCase{"hugeNeg", "-1.7976931348623157e+308", kMin, -kDoubleMax, true},
        ReadCase{"bigInt", "1e+22", kMax, 1e22, true},
        ReadCase{"bigText", "9999999999999999999999", kMax, 1e22, false},
        ReadCase{"bigNegText", "-9999999999999999999999", kMin, -1e22, false},
        ReadCase{"maxText", "9223372036854775807", kMax, 9223372036854775807.0, false},
        ReadCase{"minText", "-9223372036854775808", kMin, -9223372036854775808.0, false},
        ReadCase{"expText", "1e99999999999", kMax, kInf, false},
        ReadCase{"half-", "-0.5x", 0, -0.5, false},
        ReadCase{"2E-3", "2E-3", 0, 0.002, false},
        ReadCase{"tiny", "1e-99999", 0, 0, false},
        ReadCase{"hugeText", "1e400", kMax, kInf, false},
        ReadCase{"nan", "nan", 0, 0, false},
        // 2^53 + 1 has no double; its text must not come back as 2^53.
        ReadCase{"exactText", "9007199254740993", 9007199254740993LL, 9007199254740992.0, false},
        ReadCase{"exact", "9007199254740993", 9007199254740993LL, 9007199254740992.0, true},
        ReadCase{"2.25", "2.25", 2, 2.25, true},
        ReadCase{"negBigInt", "-1e+22", kMin, -1e22, true},
        ReadCase{"negHugeE", "-1.7976931348623157e+308", kMin, -kDoubleMax, true}),
    [](const testing::TestParamInfo<ReadCase>& param) {
        return "case" + std::to_string(param.index);
    });

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

TEST(JSONTest, ChildrenOutliveTheirParentViewAndWrapALibraryValue) {
    JSON child;
    {
        const JSON root = value(R"({"deep": {"name": "kept"}})");
        child = root["deep"];
    }
    EXPECT_EQ(child["name"].stringValue(), "kept");

    nlohmann::json built = {{"id", 5}, {"list", {1, 2}}};
    const JSON json(built);
    EXPECT_EQ(json["id"].stringValue(), "5");
    EXPECT_EQ(json["list"].count(), 2u);
    EXPECT_EQ(json.raw(), built);
    EXPECT_EQ(JSON(nlohmann::json(built)), json);
    EXPECT_EQ(JSON().raw(), nlohmann::json());
}

TEST(JSONTest, MalformedTextAndNestingDeeperThanTheLimitParseAsNull) {
    for (const char* text : {"", "{", "{\"a\":}", "[1,]", "nope", "{\"a\" 1}", "\"unterminated"}) {
        EXPECT_FALSE(JSON::parse(text).exists()) << text;
    }

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

TEST(JSONTest, DumpIsCompactMissingDumpsAsNullAndNumbersReadAsTheyWere) {
    EXPECT_EQ(value(R"({"b": [1, "x"], "a": null})").dump(), R"({"a":null,"b":[1,"x"]})");
    EXPECT_EQ(JSON().dump(), "null");
    // Four hundred digits overflow a double and saturate like 1e400.
    const JSON digits = JSON::parse("[" + std::string(400, '9') + "]");
    EXPECT_EQ(digits[0].int64Value(), kMax);
    EXPECT_EQ(digits.dump(), "[1.7976931348623157e+308]");

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

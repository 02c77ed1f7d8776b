#include <string>

#include "api/XAuthEncoding.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

const std::string kUnreserved =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~";

// Every printable ASCII character must come out as itself when `kept` holds it, and as its
// "%XX" escape otherwise.
void expectKeepsExactly(std::string (*escape)(std::string_view), const std::string& kept) {
    for (char c = 0x20; c < 0x7F; ++c) {
        char escaped[4];
        std::snprintf(escaped, sizeof escaped, "%%%02X", static_cast<unsigned char>(c));
        const std::string expected =
            kept.find(c) != std::string::npos ? std::string(1, c) : escaped;
        EXPECT_EQ(escape(std::string(1, c)), expected) << "character '" << c << "'";
    }
}

TEST(XAuthEncodingTest, SignatureEncodingKeepsOnlyTheUnreservedCharacters) {
    expectKeepsExactly(signatureEscape, kUnreserved);
    EXPECT_EQ(signatureEscape(":/?#[]@!$&'()*+,;="),
              "%3A%2F%3F%23%5B%5D%40%21%24%26%27%28%29%2A%2B%2C%3B%3D");
}

TEST(XAuthEncodingTest, HeaderEncodingAlsoKeepsSquareBrackets) {
    expectKeepsExactly(headerEscape, kUnreserved + "[]");
    EXPECT_EQ(headerEscape("entities[][kind]"), "entities[][kind]");
}

TEST(XAuthEncodingTest, FormValuesAndTheSignerKeepOnlyTheUnreservedCharacters) {
    expectKeepsExactly(formValueEscape, kUnreserved);
    expectKeepsExactly(strictEscape, kUnreserved);
}

TEST(XAuthEncodingTest, NonAsciiBecomesItsUtf8Escapes) {
    EXPECT_EQ(signatureEscape("d\xC3\xBC"), "d%C3%BC");
    EXPECT_EQ(headerEscape("\xE2\x82\xAC"), "%E2%82%AC");
    EXPECT_EQ(strictEscape("\xF0\x9F\x8E\xB5"), "%F0%9F%8E%B5");
    EXPECT_EQ(signatureEscape(""), "");
}

TEST(XAuthEncodingTest, HmacSha1MatchesPublishedVectors) {
    EXPECT_EQ(hmacSha1Base64("key", "The quick brown fox jumps over the lazy dog"),
              "3nybhbi3iqa8ino29wqQcBydtNk=");
    EXPECT_EQ(hmacSha1Base64("Jefe", "what do ya want for nothing?"),
              "7/zfauXrL6LSdBbV8YTfnCWafHk=");
}

}  // namespace
}  // namespace tb

#include <cstdio>
#include <string>
#include <vector>

#include "platform/PercentEncoding.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

const std::string kUnreserved =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~";

struct EncodingCase {
    const char* name;
    std::string (*encode)(std::string_view);
    std::string kept;  // the printable ASCII characters that stay as they are
    std::vector<std::pair<std::string, std::string>> samples;
};

class PercentEncodingTest : public testing::TestWithParam<EncodingCase> {};

TEST_P(PercentEncodingTest, KeepsExactlyItsSetAndEscapesEveryOtherPrintableCharacter) {
    const auto& encoding = GetParam();
    for (char c = 0x20; c < 0x7F; ++c) {
        char escaped[4];
        std::snprintf(escaped, sizeof escaped, "%%%02X", static_cast<unsigned char>(c));
        const std::string expected =
            encoding.kept.find(c) != std::string::npos ? std::string(1, c) : escaped;
        // After a letter, so that a lone "." is not taken for a whole path segment.
        EXPECT_EQ(encoding.encode(std::string("a") + c), "a" + expected)
            << "character '" << c << "'";
    }
}

TEST_P(PercentEncodingTest, EncodesItsSamples) {
    const auto& encoding = GetParam();
    for (const auto& [text, encoded] : encoding.samples) {
        EXPECT_EQ(encoding.encode(text), encoded) << text;
    }
}

// Shared by every encoding: bytes of non-ASCII text, control bytes and NUL are escaped one by
// one, and the empty text stays empty.
const std::vector<std::pair<std::string, std::string>> kBytes = {
    {"", ""},
    {"d\xC3\xBC", "d%C3%BC"},
    {"\xE2\x82\xAC", "%E2%82%AC"},
    {"\xF0\x9F\x8E\xB5", "%F0%9F%8E%B5"},
    {std::string("a\0\n", 3), "a%00%0A"},
};

std::vector<std::pair<std::string, std::string>> with(
    std::vector<std::pair<std::string, std::string>> samples) {
    samples.insert(samples.end(), kBytes.begin(), kBytes.end());
    return samples;
}

INSTANTIATE_TEST_SUITE_P(
    Encodings,
    PercentEncodingTest,
    testing::Values(
        EncodingCase{
            "signing", percentEncodeForSigning, kUnreserved,
            with({{":/?#[]@!$&'()*+,;=", "%3A%2F%3F%23%5B%5D%40%21%24%26%27%28%29%2A%2B%2C%3B%3D"},
                  {"a+b", "a%2Bb"},
                  {"%2B", "%252B"},
                  {".", "."}})},
        EncodingCase{"formKey", percentEncodeFormKey, kUnreserved + "[]",
                     with({{"entities[][kind]", "entities[][kind]"}, {"a b=c", "a%20b%3Dc"}})},
        EncodingCase{
            "queryValue", percentEncodeQueryValue, kUnreserved,
            with({{"a b&c=d/e?f+g%", "a%20b%26c%3Dd%2Fe%3Ff%2Bg%25"}, {"x[]", "x%5B%5D"}})},
        EncodingCase{"pathSegment", percentEncodePathSegment, kUnreserved,
                     with({{".", "%2E"},
                           {"..", "%2E%2E"},
                           {"...", "..."},
                           {"uploader/album", "uploader%2Falbum"},
                           {"song-1_v2.final", "song-1_v2.final"}})}),
    [](const testing::TestParamInfo<EncodingCase>& param) { return param.param.name; });

}  // namespace
}  // namespace tb

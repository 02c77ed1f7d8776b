#include "api/XAuthEncoding.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

TEST(XAuthEncodingTest, HmacSha1MatchesPublishedVectors) {
    EXPECT_EQ(hmacSha1Base64("key", "The quick brown fox jumps over the lazy dog"),
              "3nybhbi3iqa8ino29wqQcBydtNk=");
    EXPECT_EQ(hmacSha1Base64("Jefe", "what do ya want for nothing?"),
              "7/zfauXrL6LSdBbV8YTfnCWafHk=");
}

}  // namespace
}  // namespace tb

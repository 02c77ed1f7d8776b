#include "core/URLComponents.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

TEST(URLComponentsTest, SplitsEveryPartOfLinksWithOrWithoutAuthorityOrPath) {
    const auto parts =
        URLComponents::parse("https://me@api.tunebrook.test:8443/v1/a%20b/?q=1&r#top");
    ASSERT_TRUE(parts);
    EXPECT_EQ(parts->scheme, "https");
    EXPECT_EQ(parts->host, "api.tunebrook.test");
    EXPECT_EQ(parts->port, 8443);
    EXPECT_EQ(parts->path, "/v1/a b");
    EXPECT_EQ(parts->query, "q=1&r");
    EXPECT_EQ(parts->fragment, "top");
    EXPECT_EQ(parts->origin(), "https://api.tunebrook.test:8443");

    const auto bare = URLComponents::parse("tunebrook:song");
    ASSERT_TRUE(bare);
    EXPECT_EQ(bare->host, "");
    EXPECT_EQ(bare->path, "song");
    EXPECT_EQ(bare->origin(), "");

    const auto hostOnly = URLComponents::parse("tunebrook://feed?key=1");
    ASSERT_TRUE(hostOnly);
    EXPECT_EQ(hostOnly->host, "feed");
    EXPECT_EQ(hostOnly->path, "");
    EXPECT_EQ(hostOnly->query, "key=1");

    const auto ipv6 = URLComponents::parse("http://[::1]:81/x");
    ASSERT_TRUE(ipv6);
    EXPECT_EQ(ipv6->host, "[::1]");
    EXPECT_EQ(ipv6->port, 81);
}

TEST(URLComponentsTest, RefusesWhatIsNotAnAbsoluteURLAndKeepsMalformedEscapes) {
    for (const std::string text : {"", "song/123", ":nothing", "1http://x", "http://host:port/",
                                   "http://host:99999/", "ht tp://x"}) {
        EXPECT_FALSE(URLComponents::parse(text)) << text;
    }

    EXPECT_EQ(URLComponents::percentDecode("100%25%"), "100%%");
    EXPECT_EQ(URLComponents::percentDecode("%zz%4"), "%zz%4");
    EXPECT_EQ(URLComponents::percentDecode("%41%62"), "Ab");
}

}  // namespace
}  // namespace tb

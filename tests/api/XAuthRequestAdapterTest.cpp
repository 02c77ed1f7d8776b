#include <nlohmann/json.hpp>

#include "api/XAuthRequestAdapter.h"
#include "platform/Clock.h"
#include "support/Recorders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TEST(XAuthRequestAdapterTest, SetsTheSignersHeaderInPlaceOfAnyOther) {
    test::ScriptedRandomSource random;
    ManualClock clock;
    XAuthRequestAdapter adapter(XAuthSigner({"key", "secret", "HMAC-SHA1", "1.0"}, random, clock));
    HttpRequest request;
    request.url = "https://api.tunebrook.test/v1/onboarding-items";
    request.headers = {{"authorization", "stale"}, {"X-Application-Platform", "ios"}};

    const HttpRequest first = adapter.adapt(request);
    EXPECT_EQ(first.headers.size(), 2u);
    EXPECT_THAT(findHeader(first.headers, "Authorization").value_or(""),
                Not(HasSubstr("oauth_token")));

    // Credentials handed to the adapter's signer reach the next request.
    adapter.xAuthSigner().setCredentials(XAuthSigner::Credentials{"t0ken", "s"});
    EXPECT_THAT(findHeader(adapter.adapt(request).headers, "Authorization").value_or(""),
                HasSubstr("oauth_token=\"t0ken\""));
}

}  // namespace
}  // namespace tb

#include <cerrno>

#include <curl/curl.h>

#include "platform/Error.h"
#include "platform/linux/CurlErrors.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

std::int64_t codeFor(CURLcode code, int osErrno = 0, bool loopback = false, bool online = true) {
    return urlErrorCodeForCurl(CurlFailure{code, osErrno, loopback, online});
}

TEST(CurlErrorsTest, TransferFailuresMapToTheAppsCodesAndNoRouteMeansNotConnected) {
    EXPECT_EQ(codeFor(CURLE_OPERATION_TIMEDOUT), URLError::kTimedOut);
    EXPECT_EQ(codeFor(CURLE_COULDNT_RESOLVE_HOST), URLError::kCannotFindHost);
    EXPECT_EQ(codeFor(CURLE_COULDNT_CONNECT, ECONNREFUSED), URLError::kCannotConnectToHost);
    EXPECT_EQ(codeFor(CURLE_PARTIAL_FILE), URLError::kNetworkConnectionLost);
    EXPECT_EQ(codeFor(CURLE_RECV_ERROR), URLError::kNetworkConnectionLost);
    EXPECT_EQ(codeFor(CURLE_GOT_NOTHING), URLError::kNetworkConnectionLost);
    EXPECT_EQ(codeFor(CURLE_SSL_CONNECT_ERROR), URLError::kSecureConnectionFailed);
    EXPECT_EQ(codeFor(CURLE_PEER_FAILED_VERIFICATION), URLError::kSecureConnectionFailed);
    EXPECT_EQ(codeFor(CURLE_WRITE_ERROR), URLError::kCannotWriteToFile);
    EXPECT_EQ(codeFor(CURLE_TOO_MANY_REDIRECTS), URLError::kHTTPTooManyRedirects);
    EXPECT_EQ(codeFor(CURLE_OUT_OF_MEMORY), URLError::kUnknown);

    EXPECT_EQ(codeFor(CURLE_COULDNT_CONNECT, ENETUNREACH), URLError::kNotConnectedToInternet);
    EXPECT_EQ(codeFor(CURLE_COULDNT_CONNECT, ENETDOWN), URLError::kNotConnectedToInternet);
    EXPECT_EQ(codeFor(CURLE_COULDNT_CONNECT, ECONNREFUSED, false, false),
              URLError::kNotConnectedToInternet);
    EXPECT_EQ(codeFor(CURLE_COULDNT_RESOLVE_HOST, 0, false, false),
              URLError::kNotConnectedToInternet);
    // This machine answers without any network; a refusal there is a refusal.
    EXPECT_EQ(codeFor(CURLE_COULDNT_CONNECT, ECONNREFUSED, true, false),
              URLError::kCannotConnectToHost);
}

TEST(CurlErrorsTest, RecognisesLoopbackAddresses) {
    EXPECT_TRUE(isLoopbackAddress("127.0.0.1"));
    EXPECT_TRUE(isLoopbackAddress("127.1.2.3"));
    EXPECT_TRUE(isLoopbackAddress("::1"));
    EXPECT_TRUE(isLoopbackAddress("::ffff:127.0.0.1"));
    EXPECT_FALSE(isLoopbackAddress("192.0.2.2"));
    EXPECT_FALSE(isLoopbackAddress("::"));
    EXPECT_FALSE(isLoopbackAddress(""));
}

}  // namespace
}  // namespace tb

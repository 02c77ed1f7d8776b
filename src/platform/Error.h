#pragma once

#include <cstdint>
#include <string>

#include "platform/UserInfo.h"

namespace tb {

// An error as the app passes it around: a domain, a code and extra information, the shape
// of the errors the app's logic was written against. Failures are values, never exceptions.
struct Error {
    std::string domain;
    std::int64_t code = 0;
    std::string message;  // a description for people; may be empty
    ErrorInfo userInfo;

    bool operator==(const Error&) const = default;
};

// Domains and codes of transport failures, matching the platform codes the app tests.
namespace URLError {
inline constexpr const char* kDomain = "NSURLErrorDomain";
inline constexpr std::int64_t kUnknown = -1;
inline constexpr std::int64_t kCancelled = -999;
inline constexpr std::int64_t kBadURL = -1000;
inline constexpr std::int64_t kTimedOut = -1001;
inline constexpr std::int64_t kUnsupportedURL = -1002;
inline constexpr std::int64_t kCannotFindHost = -1003;
inline constexpr std::int64_t kCannotConnectToHost = -1004;
inline constexpr std::int64_t kNetworkConnectionLost = -1005;
inline constexpr std::int64_t kHTTPTooManyRedirects = -1007;
inline constexpr std::int64_t kNotConnectedToInternet = -1009;
inline constexpr std::int64_t kBadServerResponse = -1011;
inline constexpr std::int64_t kCannotDecodeRawData = -1015;
inline constexpr std::int64_t kCannotDecodeContentData = -1016;
inline constexpr std::int64_t kCannotWriteToFile = -3003;
inline constexpr std::int64_t kSecureConnectionFailed = -1200;
}  // namespace URLError

}  // namespace tb

#include "platform/linux/CurlErrors.h"

#include <cerrno>

#include <curl/curl.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>

#include "platform/Error.h"

namespace tb {

namespace {

std::int64_t connectFailureCode(const CurlFailure& failure) {
    if (failure.osErrno == ENETUNREACH || failure.osErrno == ENETDOWN) {
        return URLError::kNotConnectedToInternet;
    }
    if (!failure.hasNetworkInterface && !failure.loopbackTarget) {
        return URLError::kNotConnectedToInternet;
    }
    return URLError::kCannotConnectToHost;
}

}  // namespace

std::int64_t urlErrorCodeForCurl(const CurlFailure& failure) {
    switch (static_cast<CURLcode>(failure.curlCode)) {
        case CURLE_OPERATION_TIMEDOUT:
            return URLError::kTimedOut;
        case CURLE_ABORTED_BY_CALLBACK:
            return URLError::kCancelled;
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY:
            return failure.hasNetworkInterface ? URLError::kCannotFindHost
                                               : URLError::kNotConnectedToInternet;
        case CURLE_COULDNT_CONNECT:
            return connectFailureCode(failure);
        case CURLE_SEND_ERROR:
        case CURLE_RECV_ERROR:
        case CURLE_PARTIAL_FILE:
        case CURLE_GOT_NOTHING:
        case CURLE_HTTP2:
        case CURLE_HTTP2_STREAM:
            return URLError::kNetworkConnectionLost;
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CERTPROBLEM:
        case CURLE_SSL_CIPHER:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_ISSUER_ERROR:
        case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
        case CURLE_SSL_INVALIDCERTSTATUS:
        case CURLE_SSL_ENGINE_NOTFOUND:
        case CURLE_SSL_ENGINE_SETFAILED:
        case CURLE_SSL_ENGINE_INITFAILED:
        case CURLE_SSL_CRL_BADFILE:
        case CURLE_SSL_SHUTDOWN_FAILED:
        case CURLE_USE_SSL_FAILED:
            return URLError::kSecureConnectionFailed;
        case CURLE_WRITE_ERROR:
            return URLError::kCannotWriteToFile;
        case CURLE_TOO_MANY_REDIRECTS:
            return URLError::kHTTPTooManyRedirects;
        case CURLE_URL_MALFORMAT:
            return URLError::kBadURL;
        case CURLE_UNSUPPORTED_PROTOCOL:
            return URLError::kUnsupportedURL;
        case CURLE_BAD_CONTENT_ENCODING:
            return URLError::kCannotDecodeRawData;
        case CURLE_WEIRD_SERVER_REPLY:
            return URLError::kBadServerResponse;
        default:
            return URLError::kUnknown;
    }
}

bool hasUsableNetworkInterface() {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) {
        // Without an answer, don't claim the device is offline.
        return true;
    }
    bool found = false;
    for (const ifaddrs* entry = list; entry != nullptr && !found; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr) {
            continue;
        }
        const int family = entry->ifa_addr->sa_family;
        const unsigned flags = entry->ifa_flags;
        found = (family == AF_INET || family == AF_INET6) && (flags & IFF_UP) &&
                (flags & IFF_RUNNING) && !(flags & IFF_LOOPBACK);
    }
    freeifaddrs(list);
    return found;
}

bool isLoopbackAddress(std::string_view ip) {
    constexpr std::string_view kMapped = "::ffff:";
    if (ip.substr(0, kMapped.size()) == kMapped) {
        ip.remove_prefix(kMapped.size());
    }
    return ip == "::1" || ip.substr(0, 4) == "127.";
}

}  // namespace tb

#pragma once

#include <cstdint>
#include <string_view>

namespace tb {

// What a failed libcurl transfer tells about itself, enough to choose the app's error code.
struct CurlFailure {
    int curlCode = 0;                 // a CURLcode other than CURLE_OK
    int osErrno = 0;                  // CURLINFO_OS_ERRNO: the socket error behind a failed connect
    bool loopbackTarget = false;      // the address tried was 127.x or ::1
    bool hasNetworkInterface = true;  // some non-loopback interface is up with an address
};

// The URLError code the app's logic expects for a failed transfer. Being offline reads as
// "not connected" (-1009) rather than "cannot find host" or "cannot connect": the network
// unreachable errors say so directly, and with no usable interface at all, a lookup or a
// connect to anything but this machine can only have failed for that reason.
std::int64_t urlErrorCodeForCurl(const CurlFailure& failure);

// True when an interface other than loopback is up, running and has an IPv4 or IPv6 address.
bool hasUsableNetworkInterface();

// True for "127.x.y.z", "::1" and "::ffff:127.x.y.z".
bool isLoopbackAddress(std::string_view ip);

}  // namespace tb

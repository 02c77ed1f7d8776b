#pragma once

namespace tb::service {

// The "errorcode" values of the service's error answers. The login codes are the ones the
// client knows by number; the others are the service's own.
enum ErrorCode : int {
    kMissingAuthorization = 1000,
    kMalformedAuthorization = 1001,
    kUnknownConsumer = 1002,
    kInvalidSignature = 1003,
    kExpiredTimestamp = 1004,
    kNonceReused = 1005,
    kInvalidToken = 1006,
    kExpiredToken = 1007,
    kTokenRequired = 1008,
    kLoginGeneric = 1037,
    kSocialLoginNoEmail = 1052,
    kSocialLoginEmailTaken = 1057,
    kBadRequest = 1400,
    kForbidden = 1403,
    kNotFound = 1404,
    kMethodNotAllowed = 1405,
    kTakenDown = 1410,
    kGeoRestricted = 1451,
    kServerError = 1500,
};

}  // namespace tb::service

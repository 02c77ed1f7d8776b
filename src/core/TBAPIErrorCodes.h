#pragma once

namespace tb {

// The service's "errorcode" values that the login screens tell apart.
struct TBAPIErrorCodes {
    int loginGenericError = 1037;
    int socialLoginNoEmail = 1052;
    int socialLoginEmailAlreadyTaken = 1057;
};

}  // namespace tb

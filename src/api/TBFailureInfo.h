#pragma once

#include <optional>
#include <string>

#include "platform/Error.h"

namespace tb {

class AFHTTPRequestOperation;
class JSON;

// What the catalogue's failure blocks receive: the failure dictionary of the service's
// older operations, with its three entries "response" (the answer's text, "" without one),
// "error" (the error, none standing for "") and "statusCode" (0 without a response).
//
// Some failures hand over the empty dictionary instead (a failed token refresh, a missing
// answer): isEmpty is then true and the entries keep their neutral values.
struct TBFailureInfo {
    std::string response;
    std::optional<Error> error;
    int statusCode = 0;
    bool isEmpty = false;

    static TBFailureInfo emptyDictionary();
    // The dictionary of a failed request.
    static TBFailureInfo of(const AFHTTPRequestOperation& operation, const Error& error);

    // The answer read as JSON: a missing node when it isn't JSON.
    JSON responseJSON() const;
    // The service's "errorcode" in the answer, as text (a number in decimal), if it holds one.
    std::optional<std::string> errorcode() const;
};

}  // namespace tb

#include "api/TBFailureInfo.h"

#include "api/AFHTTPRequestOperation.h"
#include "platform/JSON.h"

namespace tb {

TBFailureInfo TBFailureInfo::emptyDictionary() {
    TBFailureInfo info;
    info.isEmpty = true;
    return info;
}

TBFailureInfo TBFailureInfo::of(const AFHTTPRequestOperation& operation, const Error& error) {
    return TBFailureInfo{operation.responseString(), error, operation.statusCode(), false};
}

JSON TBFailureInfo::responseJSON() const {
    return JSON::parse(response);
}

std::optional<std::string> TBFailureInfo::errorcode() const {
    const JSON code = responseJSON()["errorcode"];
    if (!code.isString() && !code.isNumber()) {
        return std::nullopt;
    }
    return code.stringValue();
}

}  // namespace tb

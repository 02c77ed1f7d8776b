#pragma once

#include <any>
#include <map>
#include <string>

namespace tb {

// Extra information carried by a notification: any value under a string key, like the
// user-info dictionaries of the platform the app was written for.
using UserInfo = std::map<std::string, std::any>;

// Extra information attached to an error record. Values are text; numbers are written in
// decimal, booleans as "true"/"false", as the crash reporter shows them.
using ErrorInfo = std::map<std::string, std::string>;

}  // namespace tb

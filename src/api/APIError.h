#pragma once

#include <string>

#include "platform/Error.h"

namespace tb {

// A failure of the typed layer meant for display: `generic` carries a text to show,
// `unknown` is the fallback when there is none. Carried as an Error of the domain kDomain.
struct APIError {
    static constexpr const char* kDomain = "APIError";
    enum Code : std::int64_t {
        generic = 0,
        unknown = 1,
    };

    static Error makeGeneric(std::string text);
    static Error makeUnknown();
};

}  // namespace tb

#pragma once

#include <optional>
#include <string>

#include "platform/Error.h"

namespace tb {

// Why a profile edit failed, as the edit screen shows it: `errorWithMessage` shows its title
// and message, `generic` a general alert, and `invalidSignature` sends the listener down the
// expired-token path. Carried as an Error of the domain kDomain: the message is the Error's
// message and the title is under "title" in its user info.
struct ProfileEditError {
    static constexpr const char* kDomain = "ProfileEditError";
    enum Code : std::int64_t {
        errorWithMessage = 0,
        generic = 1,
        invalidSignature = 2,
    };

    static Error makeErrorWithMessage(std::string title, std::string message);
    static Error makeGeneric();
    static Error makeInvalidSignature();

    // What a failed edit request (a TBJSONError) means for the listener: a 401 is the
    // signature's fault; an answer with "message" or "errors" gives errorWithMessage, whose
    // title is the "message" and whose message is the texts of "errors", one per line (or the
    // "message" alone when there are none); anything else is generic.
    static Error fromFailure(const Error& failure);

    // The title of an errorWithMessage; nothing for other errors.
    static std::optional<std::string> title(const Error& error);
};

}  // namespace tb

#pragma once

#include <string>
#include <string_view>

namespace tb {

// The percent-encodings and the digest of the two signing paths. Each encoding works on the
// UTF-8 bytes of its text and writes every byte it does not keep as "%XX" (upper-case hex),
// so non-ASCII characters become their UTF-8 escapes. They differ only in what they keep,
// and the differences are part of what the service verifies: never swap one for another.

// The serializers' signature-base encoding. Keeps the unreserved characters (letters,
// digits, "-", ".", "_", "~"); everything else is escaped, including all of
// ":/?#[]@!$&'()*+,;=", "%" and the space.
std::string signatureEscape(std::string_view text);

// The serializers' header and form-key encoding. It asks the platform's URL escaping to keep
// "[]." and to force ":/?&=;+!@#$()',*". That escaping leaves alone what is legal in a URL:
// the unreserved characters, the reserved ";/?:@&=+$," and the marks "!*'()". Forcing takes
// every reserved character and mark back out, so what stays unescaped is the unreserved set
// plus "[" and "]" ("." is unreserved already). "%", the space, "#", quotes, "<>{}|\^`" and
// all non-ASCII bytes are escaped.
std::string headerEscape(std::string_view text);

// Form values: the header encoding without the two kept brackets, i.e. unreserved only.
std::string formValueEscape(std::string_view text);

// The typed layer's signer encoding: exactly
// "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~" unescaped.
std::string strictEscape(std::string_view text);

// HMAC-SHA1 of `text` under `key`, as standard Base64 with "=" padding.
std::string hmacSha1Base64(std::string_view key, std::string_view text);

}  // namespace tb

#pragma once

#include <string>
#include <string_view>

namespace tb {

// The app's percent-encodings. Each one works on the UTF-8 bytes of its text and writes every
// byte it does not keep as "%XX" (upper-case hex), so non-ASCII characters become their UTF-8
// escapes. They differ only in what they keep, and several of the differences are checked by
// the service: never swap one for another, even where two keep the same set today.

// The unreserved characters: letters, digits, "-", ".", "_", "~".
bool isUnreservedByte(unsigned char c);

// Escapes every byte for which `keep` is false. The named encodings below are the ones to
// call; this is for text that is not a URL part (file names).
std::string percentEncode(std::string_view text, bool (*keep)(unsigned char));

// The request signers' encoding: keeps the unreserved characters only, so all of
// ":/?#[]@!$&'()*+,;=", "%" and the space are escaped.
std::string percentEncodeForSigning(std::string_view text);

// The form serializer's encoding of a parameter name, also used for the serializers'
// Authorization header: the unreserved characters and "[" and "]" stay, so nested names
// ("entities[][kind]") keep their brackets. Everything else is escaped.
std::string percentEncodeFormKey(std::string_view text);

// A value in a query or form body: keeps the unreserved characters only.
std::string percentEncodeQueryValue(std::string_view text);

// One segment of a URL path made from an id, slug or tag: keeps the unreserved characters,
// and escapes "." and ".." whole, so that no text can step out of its place in the path.
std::string percentEncodePathSegment(std::string_view text);

}  // namespace tb

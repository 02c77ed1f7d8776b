#pragma once

#include <map>
#include <string>
#include <vector>

#include "tunebrook-service/http/FormParams.h"

namespace tb::service {

// What a signature is computed over, rebuilt from the request as it arrived.
struct SignatureInput {
    std::string method;  // upper case
    std::string url;     // absolute, up to the first "?"
    std::vector<FormParam> queryParams;
    std::vector<FormParam> bodyParams;  // fields of a form or multipart body
    bool urlEncodedBody = false;        // Content-Type is a url-encoded form and a body exists
    std::map<std::string, std::string> oauth;  // Authorization entries, decoded once
    std::string consumerSecret;
    std::string tokenSecret;
};

enum class SignatureScheme { none, serializer, signer };

// Recomputes the request signature by the two algorithms the client's signing paths use and
// accepts a request whose signature equals either exactly. The two are deliberately kept
// apart here as in the client: they differ in the encoding of values, the separator inside
// entries, what is sorted, and how the HMAC key is made.
class SignatureVerifier {
  public:
    // The form and JSON serializers: values encoded twice, "%3D" inside entries, whole
    // entries sorted, HMAC key of the raw secrets.
    static std::string serializerBaseString(const SignatureInput& input);
    static std::string serializerSignature(const SignatureInput& input);

    // The typed layer's signer: values encoded once, "=" inside entries, the joined list
    // encoded again, HMAC key of the encoded secrets.
    static std::string signerBaseString(const SignatureInput& input);
    static std::string signerSignature(const SignatureInput& input);

    static SignatureScheme verify(const SignatureInput& input);
};

}  // namespace tb::service

#include "tunebrook-service/media/MediaUrlSigner.h"

#include <cmath>

#include "tunebrook-service/core/Crypto.h"

namespace tb::service {

std::string MediaUrlSigner::signature(int64_t songId, const std::string& expires) const {
    std::string mac =
        Crypto::hmacSha256(secret_, "audio/" + std::to_string(songId) + "/" + expires);
    return Crypto::hex(mac).substr(0, 32);
}

std::string MediaUrlSigner::streamUrl(int64_t songId, double now) const {
    std::string expires = std::to_string(static_cast<int64_t>(std::floor(now + lifetime_)));
    return origin_ + "/media/audio/" + std::to_string(songId) + ".mp3?expires=" + expires +
           "&sig=" + signature(songId, expires);
}

MediaUrlSigner::Check MediaUrlSigner::check(int64_t songId,
                                            const std::string& expires,
                                            const std::string& given,
                                            double now) const {
    if (expires.empty() || expires.size() > 12 ||
        expires.find_first_not_of("0123456789") != std::string::npos ||
        !Crypto::constantTimeEqual(given, signature(songId, expires))) {
        return Check::forged;
    }
    return std::stod(expires) < now ? Check::expired : Check::ok;
}

std::string MediaUrlSigner::imageUrl(const std::string& name) const {
    return name.empty() ? std::string() : origin_ + "/media/images/" + name + ".jpg";
}

}  // namespace tb::service

#pragma once

#include <cstdint>
#include <string>

namespace tb::service {

// Addresses of the audio and artwork on this server. Audio addresses are signed and expire:
// "/media/audio/<song id>.mp3?expires=<seconds>&sig=<hmac>", each song its own address even
// where songs share a recording.
class MediaUrlSigner {
  public:
    enum class Check { ok, expired, forged };

    MediaUrlSigner(std::string origin, std::string secret, double lifetimeSeconds)
        : origin_(std::move(origin)), secret_(std::move(secret)), lifetime_(lifetimeSeconds) {}

    std::string streamUrl(int64_t songId, double now) const;
    Check check(int64_t songId,
                const std::string& expires,
                const std::string& signature,
                double now) const;
    // The artwork's address without size, "" for no artwork.
    std::string imageUrl(const std::string& name) const;
    const std::string& origin() const { return origin_; }

  private:
    std::string signature(int64_t songId, const std::string& expires) const;

    std::string origin_;
    std::string secret_;
    double lifetime_;
};

}  // namespace tb::service

#pragma once

#include <string>

namespace tb::service {

// DIR/keys.json, readable by its owner only: the roles the client asks its key store for.
// The API base and the consumer pair are real; every outside service gets a placeholder.
class KeysFile {
  public:
    static bool write(const std::string& path,
                      const std::string& baseUrl,
                      const std::string& origin,
                      const std::string& consumerKey,
                      const std::string& consumerSecret);
};

}  // namespace tb::service

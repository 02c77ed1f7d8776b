#pragma once

#include <string>

namespace tb::test {

// The JSON of a keys file with a made-up value for every role; the service roles point at
// "https://api.tunebrook.test/v1/" (live) and "http://127.0.0.1:8081/v1/" (dev).
// `without` leaves that role out.
std::string testKeysJson(const std::string& without = {});

// Writes testKeysJson(without) to `path`, replacing what is there.
void writeTestKeys(const std::string& path, const std::string& without = {});

}  // namespace tb::test

#pragma once

#include <string>

namespace tb {

class RandomSource;
class UserDefaults;

// This installation's identifier for the app's maker: an upper-case UUID made from the
// system's secure random source at first use and kept in the user defaults, so it stays
// for the life of the installation and is new after a reinstall, as a phone's is.
std::string vendorIdentifier(UserDefaults& defaults, RandomSource& random);

}  // namespace tb

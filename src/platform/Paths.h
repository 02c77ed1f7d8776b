#pragma once

#include <string>

namespace tb {

// Where the app keeps its files.
//   documents  the store, downloaded music, artwork, export.txt (the user's documents)
//   caches     the stream cache and other files that can be rebuilt
//   config     the user defaults suites and, by default, the keys file
//   support    what must outlive a reinstall but is not a document: the file keychain,
//              the error reporter's log
// On Linux they follow XDG (see XdgPaths); `--home DIR` moves all four under DIR.
struct Paths {
    std::string documents;
    std::string caches;
    std::string config;
    std::string support;

    // DIR/documents, DIR/caches, DIR/config, DIR/support.
    static Paths underHome(const std::string& home);

    // Creates the four folders (0700) when missing. False with a reason when one can't be made.
    bool createAll(std::string* reason = nullptr) const;
};

}  // namespace tb

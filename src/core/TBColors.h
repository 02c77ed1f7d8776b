#pragma once

namespace tb {

// The theme colours of the presentation shell, as "#RRGGBB". Only the help desk's theme
// reads one of them from the app's logic (orange); the shells read the rest.
struct TBColors {
    const char* orange = "#FFA200";
    const char* black = "#000000";
    const char* white = "#FFFFFF";
    const char* darkGray = "#222222";
    const char* gray = "#868686";
    const char* lightGray = "#D8D8D8";
    const char* red = "#E53935";
    const char* green = "#2EB872";
};

}  // namespace tb

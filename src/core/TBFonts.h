#pragma once

namespace tb {

// The font family names of the presentation shell.
struct TBFonts {
    const char* regular = "OpenSans";
    const char* bold = "OpenSans-Bold";
    const char* italic = "OpenSans-Italic";
    const char* extrabold = "OpenSans-Extrabold";
    const char* semibold = "OpenSans-Semibold";
};

}  // namespace tb

#pragma once

namespace tb {

// Limits of the music records the listener edits.
struct TBItemConstants {
    double playlistImageMaxSize = 1024.0;
};

}  // namespace tb

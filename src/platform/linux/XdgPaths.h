#pragma once

#include "platform/Paths.h"

namespace tb {

// The app's folders by the XDG base directory rules:
//   documents $XDG_DATA_HOME/tunebrook      (~/.local/share/tunebrook)
//   caches    $XDG_CACHE_HOME/tunebrook     (~/.cache/tunebrook)
//   config    $XDG_CONFIG_HOME/tunebrook    (~/.config/tunebrook)
//   support   $XDG_STATE_HOME/tunebrook     (~/.local/state/tunebrook)
Paths xdgPaths();

}  // namespace tb

#pragma once

#include <string>

#include "model/TBGenre.h"

namespace tb {

class TBGenreEnumManager {
  public:
    // The display text of a genre (see displayText).
    static std::string getGenreNameWithGenre(TBGenre genre);
};

}  // namespace tb

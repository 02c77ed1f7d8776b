#include "model/TBGenreEnumManager.h"

namespace tb {

std::string TBGenreEnumManager::getGenreNameWithGenre(TBGenre genre) {
    return displayText(genre);
}

}  // namespace tb

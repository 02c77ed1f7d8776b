#pragma once

#include "model/Artist.h"
#include "model/ItemAttributes.h"

namespace tb {

// An artist offered on the onboarding screens, with the playlist that introduces them.
struct OnboardingArtist {
    ArtistPtr artist;
    ItemPtr playlist;
};

}  // namespace tb

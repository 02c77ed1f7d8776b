#pragma once

namespace tb {

// Limits of the artist profile the listener edits.
struct TBArtistConstants {
    int artistNameMaxLength = 65;
    int artistUrlSlugMaxLength = 65;
    int artistLabelMaxLength = 65;
    int artistHometownMaxLength = 65;
    int artistUrlMaxLength = 80;
    int artistBioMaxLength = 900;
    int artistAvatarMaxSize = 1024;
};

}  // namespace tb

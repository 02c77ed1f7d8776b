#include "accounts/TBUserRepository.h"

#include "accounts/TBCredentials.h"
#include "model/Artist.h"

namespace tb {

TBUserRepository::TBUserRepository(TBCredentials& credentials, Sources sources)
    : credentials_(credentials), sources_(std::move(sources)) {}

bool TBUserRepository::isLoggedIn() {
    return credentials_.loggedIn();
}

bool TBUserRepository::hasSavedArtist() {
    return savedArtist() != nullptr;
}

bool TBUserRepository::isAdmin() {
    const auto artist = savedArtist();
    return artist && artist->admin;
}

bool TBUserRepository::isTester() {
    return sources_.isTester && sources_.isTester();
}

std::optional<std::string> TBUserRepository::userSlug() {
    return credentials_.userSlug();
}

std::optional<std::string> TBUserRepository::userId() {
    return credentials_.userId();
}

std::optional<std::string> TBUserRepository::userScreenName() {
    return credentials_.userScreenName();
}

std::optional<std::string> TBUserRepository::userEmail() {
    return credentials_.userEmail();
}

std::optional<std::string> TBUserRepository::userPictureURLString() {
    const auto artist = savedArtist();
    return artist ? artist->image : std::nullopt;
}

ArtistPtr TBUserRepository::savedArtist() {
    return credentials_.savedArtist();
}

std::int64_t TBUserRepository::offlineDownloadsCount() {
    return sources_.offlineDownloadsCount ? sources_.offlineDownloadsCount() : 0;
}

}  // namespace tb

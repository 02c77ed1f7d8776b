#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

namespace tb {

// The service paths and paging parameters of the catalogue's calls, shared by its areas.
class TBCataloguePaths {
  public:
    // "page" is the caller's 0-based page plus one, in decimal.
    static std::string pageText(int page);
    // One segment of a service path made from an id, slug or tag. Only unreserved
    // characters stay as they are, and "." or ".." is escaped whole, so that no id can step
    // out of its place in the path.
    static std::string pathSegment(std::string_view text);
    // An identifier that may hold slashes ("uploader-slug/album-slug"): each part a segment.
    static std::string pathOf(std::string_view text);
    // The genre of every list: empty or "all".
    static bool isAllGenres(const std::string& genre);
    // "music/<genre>/<list>", or "music/<list>" for all genres (empty or "all").
    static std::string genreListPath(const std::string& genre, const std::string& list);
    // "music/<kind>/<id>", or "music/<uploader>/<slug>" for an identifier with a slash.
    static std::string musicInfoPath(const std::string& kind, const std::string& identifier);
    // {"page": pageText(page)}.
    static nlohmann::json pageParameters(int page);
    // Adds "paging_token" when there is a non-empty one.
    static void addPagingToken(nlohmann::json& parameters,
                               const std::optional<std::string>& pagingToken);
    static nlohmann::json pagingTokenParameters(const std::optional<std::string>& pagingToken);
};

}  // namespace tb

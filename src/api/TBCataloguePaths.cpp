#include "api/TBCataloguePaths.h"

#include <nlohmann/json.hpp>

#include "platform/PercentEncoding.h"

namespace tb {

namespace {

using json = nlohmann::json;

constexpr const char* kAllGenres = "all";

}  // namespace

bool TBCataloguePaths::isAllGenres(const std::string& genre) {
    return genre.empty() || genre == kAllGenres;
}

std::string TBCataloguePaths::pageText(int page) {
    return std::to_string(page + 1);
}

std::string TBCataloguePaths::pathSegment(std::string_view text) {
    return percentEncodePathSegment(text);
}

std::string TBCataloguePaths::pathOf(std::string_view text) {
    std::string path;
    for (std::size_t start = 0;;) {
        const auto slash = text.find('/', start);
        path += pathSegment(text.substr(start, slash - start));
        if (slash == std::string_view::npos) {
            return path;
        }
        path += '/';
        start = slash + 1;
    }
}

std::string TBCataloguePaths::genreListPath(const std::string& genre, const std::string& list) {
    return "music/" + (isAllGenres(genre) ? "" : pathSegment(genre) + "/") + list;
}

std::string TBCataloguePaths::musicInfoPath(const std::string& kind,
                                            const std::string& identifier) {
    if (identifier.find('/') != std::string::npos) {
        return "music/" + pathOf(identifier);
    }
    return "music/" + kind + "/" + pathSegment(identifier);
}

json TBCataloguePaths::pageParameters(int page) {
    return json{{"page", pageText(page)}};
}

void TBCataloguePaths::addPagingToken(json& parameters,
                                      const std::optional<std::string>& pagingToken) {
    if (pagingToken && !pagingToken->empty()) {
        parameters["paging_token"] = *pagingToken;
    }
}

json TBCataloguePaths::pagingTokenParameters(const std::optional<std::string>& pagingToken) {
    json parameters = json::object();
    addPagingToken(parameters, pagingToken);
    return parameters;
}

}  // namespace tb

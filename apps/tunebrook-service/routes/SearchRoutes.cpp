#include "tunebrook-service/routes/SearchRoutes.h"

#include <set>

#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/catalogue/Vocabulary.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/ListReply.h"
#include "tunebrook-service/http/Paging.h"
#include "tunebrook-service/http/Reply.h"
#include "tunebrook-service/routes/SearchText.h"

namespace tb::service {

using nlohmann::json;

namespace {

constexpr size_t kMaxQueryLength = 200;
constexpr int kSuggestions = 8;

const char* const kMusicMatch =
    "(m.title LIKE ?1 ESCAPE '\\' OR m.artist LIKE ?1 ESCAPE '\\' OR "
    "m.featuring LIKE ?1 ESCAPE '\\' OR u.name LIKE ?1 ESCAPE '\\')";
const char* const kVerifiedUploader = " AND u.verified IN ('yes', 'tastemaker')";

std::string musicOrder(const std::string& sort) {
    if (sort == "popular") {
        return " ORDER BY m.plays_total DESC, m.id";
    }
    if (sort == "recent") {
        return " ORDER BY m.released DESC, m.id";
    }
    // Relevance: the exact title first, then titles that start with the words.
    return " ORDER BY CASE WHEN m.title LIKE ?2 ESCAPE '\\' THEN 0 "
           "WHEN m.title LIKE ?3 ESCAPE '\\' THEN 1 ELSE 2 END, m.plays_total DESC, m.id";
}

struct SearchRequest {
    std::string query;
    std::string show;
    std::string sort;
    bool verified = false;
    std::string genre;
    int offset = 0;
};

// Reads and checks the parameters; writes a 400 and returns false on a bad one.
bool readSearch(ApiCall& call, SearchRequest& search) {
    search.query = call.param("q").value_or("");
    search.show = call.param("show").value_or("music");
    search.sort = SearchText::sortWord(call.param("sort").value_or(""));
    search.verified = call.param("verified").value_or("") == "on";
    search.genre = call.param("genre").value_or("");
    static const std::set<std::string> shows = {"music", "songs", "albums", "playlists", "artists"};
    if (search.query.empty() || search.query.size() > kMaxQueryLength) {
        Reply::error(call.response, 400, kBadRequest, "Give a search text");
        return false;
    }
    if (!shows.count(search.show)) {
        Reply::error(call.response, 400, kBadRequest, "Unknown search category");
        return false;
    }
    if (!search.genre.empty() && search.genre != "all" && !Vocabulary::isGenre(search.genre)) {
        Reply::error(call.response, 400, kBadRequest, "Unknown genre");
        return false;
    }
    return ListReply::readPage(call, search.offset);
}

std::vector<MusicRow> findMusic(ServiceContext& context,
                                const SearchRequest& search,
                                const std::string& match,
                                const SqlValues& matchValues) {
    std::string where = "m.status = 'active' AND " + match;
    if (search.show == "songs") {
        where += " AND m.type = 'song'";
    } else if (search.show == "albums") {
        where += " AND m.type = 'album'";
    }
    if (search.verified) {
        where += kVerifiedUploader;
    }
    SqlValues values = matchValues;
    if (!search.genre.empty() && search.genre != "all") {
        where += " AND m.genre = ?4";
        values.emplace_back(search.genre);
    }
    return context.music.find(where + musicOrder(search.sort), values, search.offset,
                              Paging::kPageSize);
}

// The head of a first page: the best matching verified and tastemaker accounts and their
// playlists.
void addHeads(ServiceContext& context, const SearchRequest& search, json& body) {
    std::string pattern = SearchText::containsPattern(search.query);
    for (const char* level : {"tastemaker", "yes"}) {
        std::string key = std::string(level) == "yes" ? "verified" : "tastemaker";
        auto artists = context.accounts.find(
            "a.verified = ?2 AND a.name LIKE ?1 ESCAPE '\\' ORDER BY a.base_followers DESC",
            {pattern, level}, 0, 1);
        if (!artists.empty()) {
            body[key + "_artist"] = context.view.artist(artists.front(), false);
        }
        auto playlists = context.playlists.find(
            "p.private = 0 AND o.verified = ?2 AND (p.title LIKE ?1 ESCAPE '\\' OR "
            "o.name LIKE ?1 ESCAPE '\\') ORDER BY p.plays DESC",
            {pattern, level}, 0, 1);
        if (!playlists.empty()) {
            body[key + "_playlist"] = context.view.playlist(playlists.front(), false);
        }
    }
}

void search(ApiCall& call, ServiceContext& context) {
    SearchRequest request;
    if (!readSearch(call, request)) {
        return;
    }
    std::string pattern = SearchText::containsPattern(request.query);
    json body = json::object();
    if (request.show == "artists") {
        std::string where = "a.uploader = 1 AND a.name LIKE ?1 ESCAPE '\\'";
        if (request.verified) {
            where += " AND a.verified IN ('yes', 'tastemaker')";
        }
        auto rows = context.accounts.find(where + " ORDER BY a.base_followers DESC, a.id",
                                          {pattern}, request.offset, Paging::kPageSize);
        ListReply::results(call, context.view.artistList(rows));
        return;
    }
    if (request.show == "playlists") {
        auto rows = context.playlists.find(
            "p.private = 0 AND (p.title LIKE ?1 ESCAPE '\\' OR o.name LIKE ?1 ESCAPE '\\') "
            "ORDER BY p.plays DESC, p.id",
            {pattern}, request.offset, Paging::kPageSize);
        ListReply::results(call, context.view.playlistList(rows));
        return;
    }
    SqlValues values = {pattern, SearchText::exactPattern(request.query),
                        SearchText::prefixPattern(request.query)};
    auto rows = findMusic(context, request, kMusicMatch, values);
    bool related = false;
    if (rows.empty() && request.show == "music") {
        // Nothing matches the whole text: offer what matches one of its words.
        for (const auto& word : SearchText::relatedWords(request.query)) {
            rows = findMusic(context, request, kMusicMatch,
                             {SearchText::containsPattern(word), SearchText::exactPattern(word),
                              SearchText::prefixPattern(word)});
            if (!rows.empty()) {
                related = true;
                break;
            }
        }
    }
    if (request.offset == 0) {
        addHeads(context, request, body);
    }
    body["related"] = related ? 1 : 0;
    body["results"] = context.view.musicList(rows);
    Reply::json(call.response, body);
}

void autosuggest(ApiCall& call, ServiceContext& context) {
    std::string query = call.param("q").value_or("");
    json results = json::array();
    if (query.empty() || query.size() > kMaxQueryLength) {
        ListReply::results(call, results);
        return;
    }
    std::set<std::string> seen;
    auto rows = context.music.find(
        "m.status = 'active' AND (m.title LIKE ?1 ESCAPE '\\' OR m.artist LIKE ?1 ESCAPE '\\') "
        "ORDER BY CASE WHEN m.title LIKE ?2 ESCAPE '\\' OR m.artist LIKE ?2 ESCAPE '\\' "
        "THEN 0 ELSE 1 END, m.plays_total DESC",
        {SearchText::containsPattern(query), SearchText::prefixPattern(query)}, 0, 50);
    std::string lowered = SearchText::lower(query);
    for (const auto& row : rows) {
        for (const std::string* text : {&row.artist, &row.title}) {
            if (SearchText::lower(*text).find(lowered) != std::string::npos &&
                seen.insert(*text).second && results.size() < kSuggestions) {
                results.push_back(*text);
            }
        }
    }
    ListReply::results(call, results);
}

void librarySearch(ApiCall& call, ServiceContext& context) {
    std::string query = call.param("q").value_or("");
    std::string show = call.param("show").value_or("favorites");
    int offset = 0;
    if (query.empty() || query.size() > kMaxQueryLength) {
        Reply::error(call.response, 400, kBadRequest, "Give a search text");
        return;
    }
    if (!ListReply::readPage(call, offset)) {
        return;
    }
    int64_t me = *call.accountId;
    std::string pattern = SearchText::containsPattern(query);
    const char* titleMatch = "(m.title LIKE ?1 ESCAPE '\\' OR m.artist LIKE ?1 ESCAPE '\\')";
    if (show == "favorites" || show == "favorite") {
        auto rows = context.music.find(
            std::string(titleMatch) +
                " AND m.id IN (SELECT item_id FROM favorites WHERE account_id = ?2 AND "
                "kind = 'music') ORDER BY m.title, m.id",
            {pattern, me}, offset, Paging::kPageSize);
        ListReply::results(call, context.view.musicList(rows));
    } else if (show == "playlists" || show == "playlist") {
        auto rows = context.playlists.find(
            "p.owner_id = ?2 AND p.title LIKE ?1 ESCAPE '\\' ORDER BY p.title, p.id", {pattern, me},
            offset, Paging::kPageSize);
        ListReply::results(call, context.view.playlistList(rows));
    } else if (show == "uploads" || show == "upload") {
        auto rows = context.music.find(std::string(titleMatch) +
                                           " AND m.uploader_id = ?2 AND m.album_id = 0 "
                                           "ORDER BY m.released DESC, m.id",
                                       {pattern, me}, offset, Paging::kPageSize);
        ListReply::results(call, context.view.musicList(rows));
    } else {
        Reply::error(call.response, 400, kBadRequest, "Unknown search category");
    }
}

}  // namespace

void SearchRoutes::install(ApiRouter& router, ServiceContext& context) {
    router.add("GET", "search", Access::consumer,
               [&context](ApiCall& call) { search(call, context); });
    router.add("GET", "search_autosuggest", Access::consumer,
               [&context](ApiCall& call) { autosuggest(call, context); });
    router.add("GET", "user/search", Access::user,
               [&context](ApiCall& call) { librarySearch(call, context); });
}

}  // namespace tb::service

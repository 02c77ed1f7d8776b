#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "api/TBCatalogueBlocks.h"

namespace tb {

struct TBFailureInfo;
struct TBFeaturedSpot;

// How the catalogue commands print what came back: lines for people, or (with --json) one
// JSON document whose records carry every field of the model under its own name, so that a
// script can check what the mappers made of the service's answer.
class CatalogueOutput {
  public:
    CatalogueOutput(std::ostream& out, bool json);

    // A list of music, with the page that comes after it (1-based) or its paging token.
    void items(const std::vector<ItemPtr>& items,
               const std::optional<std::string>& pagingToken,
               std::optional<int> nextPage);
    // One song, album or playlist, with its tracks.
    void item(const ItemPtr& item);
    void artist(const ArtistPtr& artist);
    void artists(const std::vector<ArtistPtr>& artists,
                 const std::optional<std::string>& pagingToken);
    void searchRows(const std::vector<TBSearchRow>& rows, bool related);
    void featured(const std::vector<TBFeaturedSpot>& spots,
                  const std::optional<TBFeaturedSpot>& pick);

    // The one line of a failed request, for stderr.
    static std::string failureText(const TBFailureInfo& failure);

    // The record as JSON: every stored attribute, nil ones as null, and what the record
    // knows beyond its columns.
    static nlohmann::json itemJSON(const Item& item);
    static nlohmann::json artistJSON(const Artist& artist);

  private:
    void itemLine(std::size_t number, const Item& item);
    void artistLine(std::size_t number, const Artist& artist);
    void print(const nlohmann::json& document);

    std::ostream& out_;
    bool json_;
};

}  // namespace tb

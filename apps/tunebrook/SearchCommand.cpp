#include <CLI/CLI.hpp>

#include "CatalogueCommand.h"
#include "api/TBDataManager.h"

namespace tb {

// `tunebrook search QUERY [--category C] [--sort S] [--verified] [--genre G] [--page N]`:
// the service's search, verified artists and playlists first, as the search screen lists it.
class SearchCommand final : public CatalogueCommand {
  public:
    std::string name() const override { return "search"; }
    std::string description() const override { return "Search music or accounts"; }

    void configure(CLI::App& command) override {
        command.add_option("QUERY", query_, "What to look for")->required();
        command.add_option("--category", category_, "music, songs, albums, playlists or artists")
            ->capture_default_str()
            ->check(CLI::IsMember({"music", "songs", "albums", "playlists", "artists"}));
        command.add_option("--sort", sort_, "relevance, popular or recent")
            ->capture_default_str()
            ->check(CLI::IsMember({"relevance", "popular", "recent"}));
        command.add_flag("--verified", verified_, "Only verified uploaders");
        addGenreOption(command, genre_, "");
        addPageOption(command, page_);
    }

  protected:
    void start(TBDataManager& data, CatalogueOutput& output) override {
        data.search(
            query_, category_, sort_, verified_, genre_, page_ - 1,
            [this, &output](const std::vector<TBSearchRow>& rows, bool related) {
                output.searchRows(rows, related);
                finish();
            },
            [this](const TBFailureInfo& failure) { fail(failure); });
    }

  private:
    std::string query_;
    std::string category_ = "music";
    std::string sort_ = "relevance";
    bool verified_ = false;
    std::string genre_;
    int page_ = 1;
};

TB_REGISTER_COMMAND(SearchCommand)

}  // namespace tb

#include <CLI/CLI.hpp>

#include "CatalogueCommand.h"
#include "api/TBDataManager.h"

namespace tb {

// `tunebrook artist SLUG [uploads|favorites|playlists] [--page N] [--show C]`: an account,
// or one of its lists of music.
class ArtistCommand final : public CatalogueCommand {
  public:
    std::string name() const override { return "artist"; }
    std::string description() const override {
        return "An account, or its uploads, favorites or playlists";
    }

    void configure(CLI::App& command) override {
        command.add_option("SLUG", slug_, "The account's slug")->required();
        command.add_option("LIST", list_, "uploads, favorites or playlists")
            ->check(CLI::IsMember({"uploads", "favorites", "playlists"}));
        command
            .add_option("--show", show_, "The favorites' category: all, songs, albums, playlists")
            ->capture_default_str()
            ->check(CLI::IsMember({"all", "songs", "albums", "playlists"}));
        addPageOption(command, page_);
    }

  protected:
    void start(TBDataManager& data, CatalogueOutput& output) override {
        auto failure = [this](const TBFailureInfo& info) { fail(info); };
        if (list_.empty()) {
            data.getArtistInfo(
                slug_,
                [this, &output](const ArtistPtr& artist) {
                    output.artist(artist);
                    artist ? finish() : fail("the service's answer held no account");
                },
                failure);
            return;
        }
        auto success = [this, &output](const std::vector<ItemPtr>& items,
                                       const std::optional<std::string>& pagingToken, const JSON&) {
            output.items(items, pagingToken, nextPage(page_, items.size()));
            finish();
        };
        if (list_ == "uploads") {
            data.getArtistUploads(slug_, page_ - 1, false, success, failure);
        } else if (list_ == "favorites") {
            data.getArtistFavorites(slug_, show_, page_ - 1, false, success, failure);
        } else {
            data.getArtistPlaylists(slug_, page_ - 1, success, failure);
        }
    }

  private:
    std::string slug_;
    std::string list_;
    std::string show_ = "all";
    int page_ = 1;
};

TB_REGISTER_COMMAND(ArtistCommand)

}  // namespace tb

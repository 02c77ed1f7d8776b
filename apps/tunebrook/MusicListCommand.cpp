#include "MusicListCommand.h"

#include "api/TBDataManager.h"
#include "model/TBGenre.h"

namespace tb {

MusicListCommand::MusicListCommand(std::string name, std::string description, Fetch fetch)
    : name_(std::move(name)), description_(std::move(description)), fetch_(std::move(fetch)) {}

void MusicListCommand::configure(CLI::App& command) {
    addGenreOption(command, genre_, rawValue(TBGenre::all));
    addPageOption(command, page_);
}

void MusicListCommand::start(TBDataManager& data, CatalogueOutput& output) {
    fetch_(
        data, genre_, page_ - 1,
        [this, &output](const std::vector<ItemPtr>& items,
                        const std::optional<std::string>& pagingToken, const JSON&) {
            output.items(items, pagingToken, nextPage(page_, items.size()));
            finish();
        },
        [this](const TBFailureInfo& failure) { fail(failure); });
}

namespace {

class TrendingCommand final : public MusicListCommand {
  public:
    TrendingCommand()
        : MusicListCommand("trending",
                           "The music trending now",
                           [](TBDataManager& data,
                              const std::string& genre,
                              int page,
                              TBItemsSuccess success,
                              TBFailureBlock failure) {
                               return data.getTrending(genre, page, std::move(success),
                                                       std::move(failure));
                           }) {}
};

class RecentCommand final : public MusicListCommand {
  public:
    RecentCommand()
        : MusicListCommand("recent",
                           "The music uploaded most recently",
                           [](TBDataManager& data,
                              const std::string& genre,
                              int page,
                              TBItemsSuccess success,
                              TBFailureBlock failure) {
                               return data.getRecent(genre, page, std::move(success),
                                                     std::move(failure));
                           }) {}
};

}  // namespace

TB_REGISTER_COMMAND(TrendingCommand)
TB_REGISTER_COMMAND(RecentCommand)

}  // namespace tb

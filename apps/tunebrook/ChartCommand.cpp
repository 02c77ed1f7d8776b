#include <CLI/CLI.hpp>

#include "CatalogueCommand.h"
#include "api/TBDataManager.h"
#include "model/TBGenre.h"

namespace tb {

// `tunebrook chart songs|albums [--genre G] [--period P] [--page N]`: one page of a chart.
class ChartCommand final : public CatalogueCommand {
  public:
    std::string name() const override { return "chart"; }
    std::string description() const override { return "The charts of songs or albums"; }

    void configure(CLI::App& command) override {
        command.add_option("TYPE", type_, "songs or albums")
            ->required()
            ->check(CLI::IsMember({"songs", "albums"}));
        addGenreOption(command, genre_, rawValue(TBGenre::all));
        addPeriodOption(command, period_);
        addPageOption(command, page_);
    }

  protected:
    void start(TBDataManager& data, CatalogueOutput& output) override {
        data.getItems(
            type_, genre_, period_, page_ - 1,
            [this, &output](const std::vector<ItemPtr>& items,
                            const std::optional<std::string>& pagingToken, const JSON&) {
                output.items(items, pagingToken, nextPage(page_, items.size()));
                finish();
            },
            [this](const TBFailureInfo& failure) { fail(failure); });
    }

  private:
    std::string type_;
    std::string genre_;
    std::string period_;
    int page_ = 1;
};

TB_REGISTER_COMMAND(ChartCommand)

}  // namespace tb

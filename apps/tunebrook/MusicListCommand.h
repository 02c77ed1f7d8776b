#pragma once

#include <functional>
#include <string>

#include "CatalogueCommand.h"
#include "api/NextPageData.h"
#include "api/TBCatalogueBlocks.h"

namespace tb {

// `tunebrook trending` and `tunebrook recent`: one page of a genre's list of music.
class MusicListCommand : public CatalogueCommand {
  public:
    using Fetch = std::function<NextPageData(TBDataManager&,
                                             const std::string& genre,
                                             int page,
                                             TBItemsSuccess,
                                             TBFailureBlock)>;

    MusicListCommand(std::string name, std::string description, Fetch fetch);

    std::string name() const override { return name_; }
    std::string description() const override { return description_; }
    void configure(CLI::App& command) override;

  protected:
    void start(TBDataManager& data, CatalogueOutput& output) override;

  private:
    std::string name_;
    std::string description_;
    Fetch fetch_;
    std::string genre_;
    int page_ = 1;
};

}  // namespace tb

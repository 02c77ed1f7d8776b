#pragma once

#include <string>

#include "CatalogueCommand.h"

namespace tb {

// `tunebrook song ID`, `album ID`, `playlist ID`: one item as the service describes it,
// with its tracks. Each may be named by slugs too, as its shared link holds them:
// "UPLOADER/SLUG" (the older "UPLOADER/album/SLUG" still works for songs and albums).
class ItemInfoCommand : public CatalogueCommand {
  public:
    enum class Kind { song, album, playlist };

    explicit ItemInfoCommand(Kind kind) : kind_(kind) {}

    std::string name() const override;
    std::string description() const override;
    void configure(CLI::App& command) override;

  protected:
    void start(TBDataManager& data, CatalogueOutput& output) override;

  private:
    Kind kind_;
    std::string identifier_;
};

}  // namespace tb

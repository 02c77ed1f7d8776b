#include <iostream>

#include "AppSession.h"
#include "CatalogueOutput.h"
#include "Command.h"
#include "api/TBDataManager.h"
#include "app/AppContext.h"
#include "model/TBFeaturedSpot.h"

namespace tb {

// `tunebrook featured`: the featured spots the launch asked for, and the one picked to show.
// The launch's request has no failure of its own to tell (a failed or empty answer keeps
// the spots the app had), so the command waits for the spots and says when none came.
class FeaturedCommand final : public Command {
  public:
    std::string name() const override { return "featured"; }
    std::string description() const override { return "The featured spots"; }
    void configure(CLI::App&) override {}

    int run(AppSession& session) override {
        auto& data = session.context().dataManager();
        if (!session.runUntil([&data] { return !data.featuredSpots().empty(); }, kWaitSeconds)) {
            std::cerr << "tunebrook: featured: no featured spots came from the service"
                      << std::endl;
            return 1;
        }
        CatalogueOutput(std::cout, session.jsonOutput())
            .featured(data.featuredSpots(), data.featuredSpot());
        return 0;
    }

  private:
    static constexpr double kWaitSeconds = 30;
};

TB_REGISTER_COMMAND(FeaturedCommand)

}  // namespace tb

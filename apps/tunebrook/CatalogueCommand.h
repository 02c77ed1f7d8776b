#pragma once

#include <optional>
#include <string>

#include "CatalogueOutput.h"
#include "Command.h"

namespace tb {

class TBDataManager;
struct TBFailureInfo;

// A command that asks the service's catalogue one thing and prints the answer. The
// subclass starts its request in `start` and ends it with finish() or fail() from the
// request's blocks; this class waits for that on the main queue and turns it into the exit
// status: 0 on an answer, 1 on a failure (told on stderr) or when no answer came in time.
class CatalogueCommand : public Command {
  public:
    int run(AppSession& session) final;

  protected:
    virtual void start(TBDataManager& data, CatalogueOutput& output) = 0;

    void finish() { done_ = true; }
    void fail(const TBFailureInfo& failure);
    void fail(const std::string& message);

    // The shared options: "--page N" (1-based, as people count; the client counts from 0),
    // "--genre" and "--period" with the values the service knows, listed on a bad value.
    static void addPageOption(CLI::App& command, int& page);
    static void addGenreOption(CLI::App& command, std::string& genre, const std::string& fallback);
    static void addPeriodOption(CLI::App& command, std::string& period);

    // The page after `page` (1-based) when this one had anything on it.
    static std::optional<int> nextPage(int page, std::size_t count);

    // Long enough for a timed-out request, a token refresh and the one repeat.
    static constexpr double kWaitSeconds = 90;

  private:
    bool done_ = false;
    int status_ = 0;
};

}  // namespace tb

#include "CatalogueCommand.h"

#include <iostream>

#include <CLI/CLI.hpp>

#include "AppSession.h"
#include "api/TBDataManager.h"
#include "app/AppContext.h"
#include "model/TBGenre.h"
#include "model/TBPeriod.h"

namespace tb {

namespace {

template <typename Values, typename Name>
std::string joined(const Values& values, Name name) {
    std::string text;
    for (const auto& value : values) {
        text += (text.empty() ? "" : ", ") + name(value);
    }
    return text;
}

}  // namespace

int CatalogueCommand::run(AppSession& session) {
    CatalogueOutput output(std::cout, session.jsonOutput());
    start(session.context().dataManager(), output);
    if (!session.runUntil([this] { return done_; }, kWaitSeconds)) {
        std::cerr << "tunebrook: " << name() << ": no answer from the service in "
                  << static_cast<int>(kWaitSeconds) << " s" << std::endl;
        return 1;
    }
    return status_;
}

void CatalogueCommand::fail(const TBFailureInfo& failure) {
    fail(CatalogueOutput::failureText(failure));
}

void CatalogueCommand::fail(const std::string& message) {
    std::cerr << "tunebrook: " << name() << ": " << message << std::endl;
    status_ = 1;
    done_ = true;
}

void CatalogueCommand::addPageOption(CLI::App& command, int& page) {
    command.add_option("--page", page, "The page, from 1")
        ->capture_default_str()
        ->check(CLI::Validator(
            [](std::string& value) {
                int number = 0;
                return CLI::detail::lexical_cast(value, number) && number >= 1
                           ? std::string()
                           : "pages are numbered from 1: --page 1 is the first page, "
                             "--page 2 the next";
            },
            "N"));
}

void CatalogueCommand::addGenreOption(CLI::App& command,
                                      std::string& genre,
                                      const std::string& fallback) {
    genre = fallback;
    const std::string valid = joined(kAllGenres, [](TBGenre g) { return rawValue(g); });
    command.add_option("--genre", genre, "One of: " + valid)
        ->capture_default_str()
        ->check(CLI::Validator(
            [valid](std::string& value) {
                return genreFromRawValue(value)
                           ? std::string()
                           : "unknown genre \"" + value + "\"; one of: " + valid;
            },
            "GENRE"));
}

void CatalogueCommand::addPeriodOption(CLI::App& command, std::string& period) {
    period = rawValue(TBPeriod::weekly);
    const std::string valid = joined(kAllPeriods, [](TBPeriod p) { return rawValue(p); });
    command.add_option("--period", period, "One of: " + valid)
        ->capture_default_str()
        ->check(CLI::Validator(
            [valid](std::string& value) {
                return periodFromRawValue(value)
                           ? std::string()
                           : "unknown period \"" + value + "\"; one of: " + valid;
            },
            "PERIOD"));
}

std::optional<int> CatalogueCommand::nextPage(int page, std::size_t count) {
    return count > 0 ? std::optional<int>(page + 1) : std::nullopt;
}

}  // namespace tb

#include <iostream>

#include <nlohmann/json.hpp>

#include "AppSession.h"
#include "Command.h"
#include "app/AppContext.h"
#include "app/TBAppDelegate.h"
#include "core/FirebaseRemoteVariablesDataSource.h"
#include "core/RemoteVariableKeys.h"
#include "core/RemoteVariables.h"
#include "core/TBGeneralConstants.h"

namespace tb {

// `tunebrook remote-vars`: every remote variable with the value in force once this launch's
// fetch rule has run. A fresh install waits for the fetch, at most as long as the splash
// would; any other launch starts the fetch and answers at once on the values an earlier
// launch activated. Each key reads the way the app reads it, typed by its default.
class RemoteVarsCommand final : public Command {
  public:
    std::string name() const override { return "remote-vars"; }
    std::string description() const override {
        return "The remote variables in force after this launch's fetch";
    }
    void configure(CLI::App&) override {}

    int run(AppSession& session) override {
        AppContext& app = session.context();
        const Promise<void> launched = app.remoteVariables().fetchAtLaunch(
            app.appDelegate().freshInstall(), TBGeneralConstants().splashSDKInitTimeout);
        // The fetch rule bounds the wait itself; this limit only guards against a hang.
        session.runUntil([&launched] { return !launched.isPending(); }, kGuardSeconds);

        const nlohmann::ordered_json values = valuesInForce(app.remoteVariables());
        if (session.jsonOutput()) {
            std::cout << values.dump() << std::endl;
            return 0;
        }
        for (const auto& [key, value] : values.items()) {
            std::cout << key << ": "
                      << (value.is_string() ? value.get<std::string>() : value.dump()) << '\n';
        }
        std::cout.flush();
        return 0;
    }

  private:
    static constexpr double kGuardSeconds = 60;

    static nlohmann::ordered_json valuesInForce(const RemoteVariables& variables) {
        nlohmann::ordered_json values = nlohmann::ordered_json::object();
        for (const auto& [key, fallback] : FirebaseRemoteVariablesDataSource::defaults()) {
            const auto kind = nlohmann::json::parse(fallback.jsonText());
            if (key == RemoteVariableKeys::searchTrending) {
                values[key] = variables.searchTrending();
            } else if (kind.is_boolean()) {
                values[key] = variables.boolValue(key);
            } else if (kind.is_number()) {
                values[key] = variables.integerValue(key);
            } else {
                values[key] = variables.stringValue(key);
            }
        }
        return values;
    }
};

TB_REGISTER_COMMAND(RemoteVarsCommand)

}  // namespace tb

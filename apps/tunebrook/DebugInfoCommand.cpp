#include <iostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "AppSession.h"
#include "Command.h"
#include "app/AppContext.h"
#include "model/ItemDAO.h"

namespace tb {

// `tunebrook debug-info`: the settings screen's "settings_debug_info". Writes the export of
// what the device keeps offline and puts it, with a copy of the store, where the listener
// picks them up to send them to the developers; tells where they are. Exits 1 when the
// export could not be written (the reason is in the log).
class DebugInfoCommand final : public Command {
  public:
    std::string name() const override { return "debug-info"; }
    std::string description() const override {
        return "Write the offline export and a copy of the store for the developers";
    }

    void configure(CLI::App& /*command*/) override {}

    int run(AppSession& session) override {
        const auto attachments = session.context().itemDAO().sendDebugInfo();
        if (!attachments) {
            std::cerr << "debug-info: the export could not be written" << std::endl;
            return 1;
        }
        if (session.jsonOutput()) {
            auto list = nlohmann::json::array();
            for (const auto& attachment : *attachments) {
                list.push_back({{"fileName", attachment.fileName},
                                {"mimeType", attachment.mimeType},
                                {"path", attachment.path}});
            }
            std::cout << nlohmann::json{{"attachments", list}}.dump() << std::endl;
            return 0;
        }
        for (const auto& attachment : *attachments) {
            std::cout << "debug-info: " << attachment.fileName << " (" << attachment.mimeType
                      << ") " << attachment.path << '\n';
        }
        std::cout.flush();
        return 0;
    }
};

TB_REGISTER_COMMAND(DebugInfoCommand)

}  // namespace tb

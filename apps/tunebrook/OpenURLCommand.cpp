#include <any>
#include <iostream>

#include <CLI/CLI.hpp>

#include "AppSession.h"
#include "Command.h"
#include "app/AppContext.h"
#include "app/TBAppDelegate.h"

namespace tb {

namespace {

std::string textOf(const UserInfo& info, const std::string& key) {
    const auto found = info.find(key);
    const auto* text = found == info.end() ? nullptr : std::any_cast<std::string>(&found->second);
    return text ? *text : std::string();
}

}  // namespace

// `tunebrook open URL`: hands a link to the app as the system would and tells what the app
// took from it. Exits 1 when the app doesn't take the link.
class OpenURLCommand final : public Command {
  public:
    std::string name() const override { return "open"; }
    std::string description() const override { return "Open a link as the system would"; }

    void configure(CLI::App& command) override {
        command.add_option("URL", url_, "The link, such as tunebrook://song/ID")->required();
    }

    int run(AppSession& session) override {
        auto& app = session.context().appDelegate();
        if (!app.applicationOpenURL(url_)) {
            std::cout << "open: not taken" << std::endl;
            return 1;
        }
        const auto notification = TBAppDelegate::notificationForURL(url_);
        std::cout << "open: type=" << textOf(*notification, "type")
                  << " id=" << textOf(*notification, "id");
        if (const auto params = notification->find("params"); params != notification->end()) {
            std::cout << " key=" << textOf(std::any_cast<const UserInfo&>(params->second), "key");
        }
        std::cout << std::endl;
        return 0;
    }

  private:
    std::string url_;
};

TB_REGISTER_COMMAND(OpenURLCommand)

}  // namespace tb

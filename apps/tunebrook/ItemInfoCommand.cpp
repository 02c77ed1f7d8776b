#include "ItemInfoCommand.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "api/TBDataManager.h"

namespace tb {

std::string ItemInfoCommand::name() const {
    switch (kind_) {
        case Kind::song:
            return "song";
        case Kind::album:
            return "album";
        case Kind::playlist:
            break;
    }
    return "playlist";
}

std::string ItemInfoCommand::description() const {
    return "One " + name() + " and what it holds";
}

void ItemInfoCommand::configure(CLI::App& command) {
    // The shared link of a song or album names its uploader and its own slug; the service
    // answers that form under "music/" as it is.
    const std::string what = kind_ == Kind::playlist
                                 ? "The playlist's id, or OWNER/SLUG as in its shared link"
                                 : "The " + name() +
                                       "'s id, or UPLOADER/SLUG as in its shared link (UPLOADER/" +
                                       name() + "/SLUG also works)";
    command.add_option("ID", identifier_, what)->required();
}

void ItemInfoCommand::start(TBDataManager& data, CatalogueOutput& output) {
    auto success = [this, &output](const ItemPtr& item) {
        output.item(item);
        if (!item) {
            fail("the service's answer held no " + name());
            return;
        }
        finish();
    };
    auto failure = [this](const TBFailureInfo& info) { fail(info); };
    const auto params = nlohmann::json::object();
    switch (kind_) {
        case Kind::song:
            data.getSongInfoWithIdentifier(identifier_, params, success, failure);
            return;
        case Kind::album:
            data.getAlbumInfoWithIdentifier(identifier_, params, success, failure);
            return;
        case Kind::playlist:
            data.getPlaylistInfo(identifier_, params, success, failure);
            return;
    }
}

namespace {

class SongCommand final : public ItemInfoCommand {
  public:
    SongCommand() : ItemInfoCommand(Kind::song) {}
};

class AlbumCommand final : public ItemInfoCommand {
  public:
    AlbumCommand() : ItemInfoCommand(Kind::album) {}
};

class PlaylistCommand final : public ItemInfoCommand {
  public:
    PlaylistCommand() : ItemInfoCommand(Kind::playlist) {}
};

}  // namespace

TB_REGISTER_COMMAND(SongCommand)
TB_REGISTER_COMMAND(AlbumCommand)
TB_REGISTER_COMMAND(PlaylistCommand)

}  // namespace tb

// The debug export of ItemDAO: what the device holds offline, for the developers.

#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "model/Item.h"
#include "model/ItemDAO.h"
#include "model/TBCoreDataManager.h"
#include "model/TBDataManagerStore.h"
#include "model/store/PersistentStoreCoordinator.h"
#include "platform/AtomicWrite.h"
#include "platform/Log.h"
#include "platform/PercentEncoding.h"

namespace tb {

namespace {

constexpr const char* kExportName = "export.txt";
constexpr const char* kStoreName = "CoreData.sqlite";
// Where the attachments are put for the listener to send: there is no mail composer here.
constexpr const char* kAttachmentFolder = "debug-export";
constexpr const char* kHeader =
    "id,cached,localFileURL,fileSize,type,downloadDate,downloaded,downloadCompleted\n";
// How a missing value prints in a line, as the export always wrote it.
constexpr const char* kNil = "(null)";

std::string text(const std::optional<std::string>& value) {
    return value ? *value : kNil;
}

std::string flag(bool value) {
    return value ? "true" : "false";
}

// The file URL of a path, as an absolute string: "file:///a/b%20c.mp3".
// A file URL as the platform writes one: the path's unreserved and sub-delimiter characters,
// "/", ":" and "@" stay as they are.
bool keptInFileURL(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("/-._~!$&'()*+,;=:@").find(static_cast<char>(c)) !=
               std::string_view::npos;
}

std::string fileURLString(const std::string& path) {
    return "file://" + percentEncode(path, keptInFileURL);
}

// A date's plain description: "2026-11-22 09:07:28 +0000" (UTC, whole seconds).
std::string dateDescription(const std::optional<Date>& date) {
    if (!date || !std::isfinite(*date)) {
        return kNil;
    }
    using namespace std::chrono;
    const sys_seconds at{seconds{static_cast<long long>(std::floor(*date))}};
    const auto day = floor<days>(at);
    const year_month_day ymd{day};
    const hh_mm_ss time{at - day};
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%04d-%02u-%02u %02d:%02d:%02d +0000",
                  static_cast<int>(ymd.year()), static_cast<unsigned>(ymd.month()),
                  static_cast<unsigned>(ymd.day()), static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return buffer;
}

std::string lineFor(const Item& item, const std::string& documents) {
    const std::string path = item.localFileURL(documents);
    std::error_code error;
    auto size = std::filesystem::file_size(path, error);
    if (error) {
        size = 0;
    }
    return text(item.itemID) + "," + flag(item.cached) + "," + fileURLString(path) + "," +
           std::to_string(size) + "," + text(item.type) + "," + dateDescription(item.downloadDate) +
           "," + flag(item.downloaded) + "," + flag(item.downloadCompleted) + "\n";
}

// Puts a copy of `bytes` into the attachment folder under `name`.
bool attach(const std::string& folder,
            const std::string& name,
            const std::string& bytes,
            std::string* reason) {
    return atomicWrite((std::filesystem::path(folder) / name).string(), bytes, reason);
}

}  // namespace

std::string ItemDAO::debugExportText() {
    const std::string documents = saving_.store().applicationDocumentsDirectory();
    std::string exportText = kHeader;
    const auto rows = fetch(cachedItemsPredicate(),
                            {SortDescriptor::sortDescriptorWithKey("downloadDate", false)});
    for (const auto& row : rows.value_or(Items{})) {
        exportText += lineFor(*row, documents);
    }
    return exportText;
}

std::optional<std::vector<ItemDAO::Attachment>> ItemDAO::sendDebugInfo() {
    auto& data = saving_.store();
    const std::filesystem::path documents = data.applicationDocumentsDirectory();
    const std::string exportPath = (documents / kExportName).string();
    const std::string folder = (documents / kAttachmentFolder).string();
    std::string reason;
    std::string exported;
    std::string storeBytes;
    std::error_code folderError;
    std::filesystem::create_directories(folder, folderError);
    // The copy of the store must hold every row, also those still in "-wal".
    if (const auto& coordinator = data.persistentStoreCoordinator()) {
        coordinator->checkpoint(nullptr);
    }
    const bool done = atomicWrite(exportPath, debugExportText(), &reason) &&
                      readFileBytes(exportPath, exported, &reason) &&
                      readFileBytes(data.storePath(), storeBytes, &reason) &&
                      attach(folder, kExportName, exported, &reason) &&
                      attach(folder, kStoreName, storeBytes, &reason);
    if (!done) {
        const std::string line = "Send debug info error: " + reason;
        logLine(line);
        return std::nullopt;
    }
    return std::vector<Attachment>{
        {kExportName, "text/plain", (std::filesystem::path(folder) / kExportName).string()},
        {kStoreName, "application/x-sqlite3",
         (std::filesystem::path(folder) / kStoreName).string()},
    };
}

}  // namespace tb

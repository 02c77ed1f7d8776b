#pragma once

// What the store benchmarks share: an app over a temp home with a seeded store, timing, raw
// SQLite statements, and the table of ratios they print.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <sqlite3.h>
#include <unistd.h>

#include "api/TBDataManager.h"
#include "app/AppContext.h"
#include "model/Item.h"
#include "model/ItemDAO.h"
#include "model/store/ObjectContext.h"
#include "platform/linux/LinuxPlatform.h"

namespace bench {

using Clock = std::chrono::steady_clock;

// The best of `repeats` runs after a warm-up run, so that both sides are measured with warm
// caches and without the noise of whatever else the machine does.
inline double millisecondsOf(const std::function<void()>& work, int repeats) {
    work();
    double best = 0;
    for (int i = 0; i < repeats; ++i) {
        const auto start = Clock::now();
        work();
        const double ms = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        best = i == 0 ? ms : std::min(best, ms);
    }
    return best;
}

[[noreturn]] inline void fail(const std::string& what) {
    std::fprintf(stderr, "%s\n", what.c_str());
    std::exit(1);
}

// Titles and artists with accents and mixed case, so that the search folds for real.
inline const std::vector<std::string>& words() {
    static const std::vector<std::string> kWords = {
        "Love",  "Été",    "Night", "Fire",   "Ocean", "Crème", "Gold", "Ärger",
        "Dance", "Shadow", "Río",   "Signal", "Moon",  "Noël",  "City", "Heart"};
    return kWords;
}

// `rows` Item rows, half of them downloaded (most of those complete).
inline void seed(tb::ObjectContext& context, int rows) {
    std::mt19937 random(7);
    const auto& kWords = words();
    for (int i = 0; i < rows; ++i) {
        auto item = context.insertNewObject<tb::Item>();
        item->itemID = std::to_string(100000 + i);
        item->title = kWords[random() % kWords.size()] + " " + kWords[random() % kWords.size()];
        item->artist = kWords[random() % kWords.size()] + " Crew";
        const int kind = static_cast<int>(random() % 10);
        item->isSong = kind < 7;
        item->isAlbum = kind == 7 || kind == 8;
        item->isPlaylist = kind == 9;
        item->type = item->isSong ? "song" : item->isAlbum ? "album" : "playlist";
        item->duration = static_cast<std::int64_t>(60 + random() % 400);
        item->image = "https://img.example/" + *item->itemID + ".jpg";
        item->plays = std::to_string(random() % 1000000);
        item->downloaded = i % 2 == 0;
        item->downloadCompleted = item->downloaded && random() % 10 != 0;
        item->downloadDate = 1.7e9 + static_cast<double>(random() % 10000000);
        if ((i % 1000 == 0 || i == rows - 1) && !context.save()) {
            fail("seeding failed");
        }
    }
}

// The app over a temp home, its store seeded with `rows` items.
class SeededStore {
  public:
    explicit SeededStore(int rows)
        : home_(std::filesystem::temp_directory_path() /
                ("tunebrook-bench-" + std::to_string(::getpid()))) {
        tb::LinuxPlatformOptions options;
        options.paths = tb::Paths::underHome(home_.string());
        options.fileKeychainOnly = true;
        std::string reason;
        platform_ = tb::LinuxPlatform::create(options, &reason);
        if (!platform_) {
            fail("no platform: " + reason);
        }
        tb::AppOptions appOptions;
        appOptions.paths = options.paths;
        app_ = std::make_unique<tb::AppContext>(platform_->ports(), appOptions);
        app_->dataManager().startup();
        std::printf("Seeding %d Item rows (half downloaded)...\n", rows);
        seed(context(), rows);
        context().reset();
    }
    ~SeededStore() {
        app_.reset();
        platform_.reset();
        std::filesystem::remove_all(home_);
    }

    tb::ObjectContext& context() { return *app_->dataManager().managedObjectContext(); }
    std::string path() const { return app_->dataManager().storePath(); }
    tb::ItemDAO& dao() { return app_->itemDAO(); }

    // A raw connection of its own to the store file.
    sqlite3* openRaw(int flags) const {
        sqlite3* db = nullptr;
        if (sqlite3_open_v2(path().c_str(), &db, flags | SQLITE_OPEN_NOMUTEX, nullptr) !=
            SQLITE_OK) {
            fail("raw: cannot open " + path());
        }
        sqlite3_busy_timeout(db, 2000);
        return db;
    }

  private:
    std::filesystem::path home_;
    std::unique_ptr<tb::LinuxPlatform> platform_;
    std::unique_ptr<tb::AppContext> app_;
};

class RawStatement {
  public:
    RawStatement(sqlite3* db, const char* sql) {
        if (sqlite3_prepare_v3(db, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement_, nullptr) !=
            SQLITE_OK) {
            fail(std::string("raw: ") + sqlite3_errmsg(db));
        }
    }
    ~RawStatement() { sqlite3_finalize(statement_); }
    RawStatement(const RawStatement&) = delete;
    RawStatement& operator=(const RawStatement&) = delete;
    sqlite3_stmt* get() { return statement_; }

    // Runs a statement that returns no rows.
    void run() {
        sqlite3_step(statement_);
        sqlite3_reset(statement_);
    }

    // Steps through every row, reading every column as the store's rows would be read.
    std::size_t readAll() {
        std::size_t rows = 0;
        const int columns = sqlite3_column_count(statement_);
        while (sqlite3_step(statement_) == SQLITE_ROW) {
            for (int c = 0; c < columns; ++c) {
                switch (sqlite3_column_type(statement_, c)) {
                    case SQLITE_INTEGER:
                        sink += static_cast<std::size_t>(sqlite3_column_int64(statement_, c));
                        break;
                    case SQLITE_FLOAT:
                        sink += static_cast<std::size_t>(sqlite3_column_double(statement_, c));
                        break;
                    case SQLITE_TEXT:
                    case SQLITE_BLOB: {
                        const auto* text = sqlite3_column_text(statement_, c);
                        std::string copy(
                            reinterpret_cast<const char*>(text),
                            static_cast<std::size_t>(sqlite3_column_bytes(statement_, c)));
                        sink += copy.size();
                        break;
                    }
                    default:
                        break;
                }
            }
            ++rows;
        }
        sqlite3_reset(statement_);
        return rows;
    }

    inline static std::size_t sink = 0;

  private:
    sqlite3_stmt* statement_ = nullptr;
};

struct Row {
    std::string measure;
    double ours;
    double raw;
    double aim;  // the most the ratio may be
};

// Prints the table; true when every ratio is within its aim.
inline bool printTable(const std::vector<Row>& table) {
    std::printf("\n%-34s %12s %12s %8s %6s\n", "measure", "store (ms)", "sqlite (ms)", "ratio",
                "aim");
    bool withinAim = true;
    for (const auto& row : table) {
        const double ratio = row.ours / row.raw;
        withinAim = withinAim && ratio <= row.aim;
        std::printf("%-34s %12.3f %12.3f %7.2fx %5.1fx\n", row.measure.c_str(), row.ours, row.raw,
                    ratio, row.aim);
    }
    std::printf("%s\n",
                withinAim ? "every measure within its aim" : "some measures over their aim");
    return withinAim;
}

}  // namespace bench

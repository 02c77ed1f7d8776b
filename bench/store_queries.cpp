// The offline library's queries through the object store, beside the same queries as raw
// prepared SQLite statements on the same file, in the same run.
//
// 100,000 Item rows, half of them downloaded (most of those complete). For each query the
// store's time and raw SQLite's are printed with their ratio; the aim is 1.5x or less.
// store_queries_writes measures opening and saving on such a store.
//
//   build/default/bench/store_queries [ROWS]

#include "StoreBenchSupport.h"
#include "model/ItemDAO.h"
#include "model/store/FetchRequest.h"

int main(int argc, char** argv) {
    const int rows = argc > 1 ? std::atoi(argv[1]) : 100000;
    bench::SeededStore seeded(rows);
    auto& store = seeded.context();
    sqlite3* db = seeded.openRaw(SQLITE_OPEN_READONLY);

    std::vector<bench::Row> table;
    std::size_t ourCount = 0;
    std::size_t rawCount = 0;

    // The offline list of songs, newest download first, whole rows.
    {
        bench::RawStatement raw(
            db,
            "SELECT * FROM \"Item\" WHERE downloaded = 1 AND (isSong = 1 OR "
            "albumTrackDownloadedAsSingle = 1) AND (cached IS NULL OR cached = 0) "
            "ORDER BY downloadDate DESC");
        const double ours = bench::millisecondsOf(
            [&] {
                store.reset();  // rows come from the file, not from the identity map
                ourCount =
                    seeded.dao()
                        .fetch(
                            seeded.dao().offlineSongsPredicate(),
                            {tb::ItemDAO::sortDescriptorFor(tb::category::OfflineSorting::newest)})
                        ->size();
            },
            5);
        const double theirs = bench::millisecondsOf([&] { rawCount = raw.readAll(); }, 5);
        table.push_back({"offline songs by date", ours, theirs, 1.5});
        if (ourCount != rawCount) {
            std::fprintf(stderr, "offline songs: %zu rows against %zu\n", ourCount, rawCount);
            return 1;
        }
    }

    // The count of completed downloads.
    {
        bench::RawStatement raw(db,
                                "SELECT COUNT(*) FROM \"Item\" WHERE downloaded = 1 AND "
                                "downloadCompleted = 1");
        std::int64_t ours = 0;
        std::int64_t theirs = 0;
        const double oursMs = bench::millisecondsOf(
            [&] {
                auto request = tb::FetchRequest::fetchRequestWithEntityName("Item");
                request.predicate = seeded.dao().allDownloadsCompletedPredicate();
                ours = store.countForFetchRequest(request).value_or(-1);
            },
            20);
        const double rawMs = bench::millisecondsOf(
            [&] {
                sqlite3_step(raw.get());
                theirs = sqlite3_column_int64(raw.get(), 0);
                sqlite3_reset(raw.get());
            },
            20);
        table.push_back({"count of completed downloads", oursMs, rawMs, 1.5});
        if (ours != theirs) {
            std::fprintf(stderr, "count: %lld against %lld\n", static_cast<long long>(ours),
                         static_cast<long long>(theirs));
            return 1;
        }
    }

    // 10,000 isDownloaded: look-ups by id.
    {
        bench::RawStatement raw(
            db,
            "SELECT COUNT(*) FROM (SELECT 1 FROM \"Item\" WHERE itemID IS ? AND "
            "downloaded = 1 LIMIT 1)");
        std::vector<std::string> ids;
        for (int i = 0; i < 10000; ++i) {
            ids.push_back(std::to_string(100000 + (i * 7919) % rows));
        }
        std::size_t ours = 0;
        std::size_t theirs = 0;
        const double oursMs = bench::millisecondsOf(
            [&] {
                ours = 0;
                for (const auto& id : ids) {
                    ours += seeded.dao().isDownloaded(id) ? 1 : 0;
                }
            },
            3);
        const double rawMs = bench::millisecondsOf(
            [&] {
                theirs = 0;
                for (const auto& id : ids) {
                    sqlite3_bind_text(raw.get(), 1, id.data(), static_cast<int>(id.size()),
                                      SQLITE_STATIC);
                    sqlite3_step(raw.get());
                    theirs += sqlite3_column_int64(raw.get(), 0) > 0 ? 1 : 0;
                    sqlite3_reset(raw.get());
                }
            },
            3);
        table.push_back({"10,000 isDownloaded look-ups", oursMs, rawMs, 1.5});
        if (ours != theirs) {
            std::fprintf(stderr, "isDownloaded: %zu against %zu\n", ours, theirs);
            return 1;
        }
    }

    // The offline search for a two-letter query. Raw SQLite's LIKE folds ASCII case only;
    // the store's search folds accents too ("ri" would find "Río"), so the query is one
    // whose matches have no accents and both find the same rows.
    {
        bench::RawStatement raw(db,
                                "SELECT * FROM \"Item\" WHERE downloaded = 1 AND (isSong = 1 OR "
                                "isAlbum = 1 OR isAlbumTrack = 1) AND (title LIKE '%ig%' OR artist "
                                "LIKE '%ig%') AND (cached IS NULL OR cached = 0)");
        const double ours = bench::millisecondsOf(
            [&] {
                store.reset();
                ourCount = seeded.dao().fetch(tb::ItemDAO::offlineSearchPredicateFor("ig"))->size();
            },
            5);
        const double theirs = bench::millisecondsOf([&] { rawCount = raw.readAll(); }, 5);
        table.push_back({"offline search \"ig\"", ours, theirs, 1.5});
        if (ourCount != rawCount) {
            std::fprintf(stderr, "offline search: %zu rows against %zu\n", ourCount, rawCount);
            return 1;
        }
    }

    sqlite3_close(db);
    bench::printTable(table);
    return 0;
}

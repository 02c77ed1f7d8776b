// Opening and saving the object store on a large library, beside raw SQLite doing the least
// that the same work needs, on the same file, in the same run:
//   - opening a store of 100,000 items, beside a raw open that reads the schema;
//   - saving one changed item while all 100,000 are held (as a long list on screen holds
//     them), beside one UPDATE of one row in its own transaction.
// A save costs what changed, so the number of records held must not show.
//
//   build/default/bench/store_queries_writes [ROWS]

#include "StoreBenchSupport.h"
#include "model/StoreModel.h"
#include "model/store/FetchRequest.h"
#include "model/store/PersistentStoreCoordinator.h"

namespace {

bench::Row open(const std::string& path) {
    bool opened = true;
    const double ours = bench::millisecondsOf(
        [&] {
            tb::PersistentStoreCoordinator coordinator(tb::StoreModel::merged());
            opened = coordinator.addPersistentStore(path, nullptr) && opened;
        },
        20);
    std::size_t schemaRows = 0;
    const double raw = bench::millisecondsOf(
        [&] {
            sqlite3* db = nullptr;
            sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                            nullptr);
            {
                bench::RawStatement schema(db, "SELECT * FROM sqlite_master");
                schemaRows = schema.readAll();
            }
            sqlite3_close(db);
        },
        20);
    if (!opened || schemaRows == 0) {
        bench::fail("open: the store did not open, or the raw open read no schema");
    }
    return {"open the store", ours, raw, 1.5};
}

bench::Row saveOneWhileAllHeld(bench::SeededStore& seeded) {
    auto& store = seeded.context();
    const auto held = store.fetch<tb::Item>(tb::FetchRequest::fetchRequestWithEntityName("Item"));
    if (!held || held->empty()) {
        bench::fail("save: no rows to hold");
    }
    tb::Item& changed = *held->at(held->size() / 2);
    bool saved = true;
    const double ours = bench::millisecondsOf(
        [&] {
            changed.duration += 1;
            changed.didChange();
            saved = store.save() && saved;
        },
        50);

    sqlite3* db = seeded.openRaw(SQLITE_OPEN_READWRITE);
    sqlite3_exec(db, "PRAGMA synchronous=NORMAL", nullptr, nullptr, nullptr);
    std::int64_t duration = 0;
    {
        bench::RawStatement begin(db, "BEGIN IMMEDIATE");
        bench::RawStatement update(db, "UPDATE \"Item\" SET duration = ?1 WHERE rowid = 1");
        bench::RawStatement commit(db, "COMMIT");
        const double raw = bench::millisecondsOf(
            [&] {
                begin.run();
                sqlite3_bind_int64(update.get(), 1, ++duration);
                update.run();
                commit.run();
            },
            50);
        if (!saved || sqlite3_changes(db) != 1) {
            bench::fail("save: the store's save failed or the raw update missed");
        }
        sqlite3_close_v2(db);
        return {"save 1 item, " + std::to_string(held->size()) + " held", ours, raw, 2.0};
    }
}

}  // namespace

int main(int argc, char** argv) {
    const int rows = argc > 1 ? std::atoi(argv[1]) : 100000;
    bench::SeededStore seeded(rows);
    std::vector<bench::Row> table;
    table.push_back(open(seeded.path()));
    table.push_back(saveOneWhileAllHeld(seeded));
    bench::printTable(table);
    return 0;
}

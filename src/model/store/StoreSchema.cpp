#include "model/store/StoreSchema.h"

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "model/store/EntityDescription.h"
#include "model/store/ManagedObjectModel.h"
#include "model/store/PredicateCompiler.h"
#include "model/store/SqliteDatabase.h"
#include "model/store/SqliteStatement.h"
#include "platform/Fatal.h"

namespace tb {

namespace {

constexpr const char* kKeyColumn = "pk";

std::string quote(const std::string& name) {
    return PredicateCompiler::quoteIdentifier(name);
}

std::string columnDefinition(const EntityDescription& entity, int index) {
    const AttributeDescription& attribute = entity.attributes()[static_cast<std::size_t>(index)];
    std::string sql = quote(attribute.name()) + " " + StoreSchema::columnType(entity, index);
    if (attribute.defaultSQL() != "NULL") {
        sql += " DEFAULT " + attribute.defaultSQL();
    }
    return sql;
}

bool readColumns(SqliteDatabase& database,
                 const std::string& table,
                 std::set<std::string>& columns,
                 SqliteError* error) {
    auto statement = database.prepare("PRAGMA table_info(" + quote(table) + ")", error);
    if (!statement) {
        return false;
    }
    while (true) {
        auto step = statement->step(error);
        if (step == SqliteStatement::Step::done) {
            return true;
        }
        if (step == SqliteStatement::Step::error) {
            return false;
        }
        columns.insert(std::string(statement->columnText(1)));
    }
}

bool bringUp(SqliteDatabase& database, const EntityDescription& entity, SqliteError* error) {
    for (const AttributeDescription& attribute : entity.attributes()) {
        if (attribute.name() == kKeyColumn) {
            TB_FATAL("Entity " + entity.name() + ": the attribute name 'pk' is the store's own");
        }
    }
    std::set<std::string> columns;
    if (!readColumns(database, entity.name(), columns, error)) {
        return false;
    }
    if (columns.empty()) {
        if (!database.execute(StoreSchema::createTableSQL(entity), error)) {
            return false;
        }
    } else {
        for (std::size_t i = 0; i < entity.attributes().size(); ++i) {
            if (columns.count(entity.attributes()[i].name())) {
                continue;
            }
            std::string sql = "ALTER TABLE " + quote(entity.name()) + " ADD COLUMN " +
                              columnDefinition(entity, static_cast<int>(i));
            if (!database.execute(sql, error)) {
                return false;
            }
        }
    }
    for (const AttributeDescription& attribute : entity.attributes()) {
        if (!attribute.isIndexed()) {
            continue;
        }
        std::string sql = "CREATE INDEX IF NOT EXISTS " +
                          quote(entity.name() + "_" + attribute.name()) + " ON " +
                          quote(entity.name()) + " (" + quote(attribute.name()) + ")";
        if (!database.execute(sql, error)) {
            return false;
        }
    }
    return true;
}

// A number that changes whenever the model's tables, columns or indexes do. The file keeps
// the number of the model it was last brought up to (as its user version), so that a launch
// with the same model tells by one read that there is nothing to do.
std::int64_t fingerprintOf(const ManagedObjectModel& model) {
    std::uint32_t hash = 2166136261u;
    const auto mix = [&](std::string_view text) {
        for (char c : text) {
            hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
        }
        hash = (hash ^ 0xffu) * 16777619u;
    };
    for (const EntityDescription* entity : model.entities()) {
        mix(entity->name());
        for (const AttributeDescription& attribute : entity->attributes()) {
            mix(attribute.name());
            mix(std::to_string(static_cast<int>(attribute.type())) +
                (attribute.isIndexed() ? "i" : ""));
            mix(attribute.defaultSQL());
        }
    }
    return static_cast<std::int64_t>(hash & 0x7fffffffu) | 1;  // never 0, a new file's
}

// Reading the user version is also the read that loads the schema.
bool isCurrent(SqliteDatabase& database,
               const ManagedObjectModel& model,
               bool& current,
               SqliteError* error) {
    auto statement = database.prepare("PRAGMA user_version", error);
    if (!statement || statement->step(error) != SqliteStatement::Step::row) {
        return false;
    }
    current = statement->columnInt64(0) == fingerprintOf(model);
    return true;
}

}  // namespace

std::string StoreSchema::columnType(const EntityDescription& entity, int attributeIndex) {
    switch (entity.attributes()[static_cast<std::size_t>(attributeIndex)].type()) {
        case AttributeType::string:
        case AttributeType::integerArray:
        case AttributeType::recordArray:
            return "TEXT";
        case AttributeType::boolean:
        case AttributeType::integer64:
            return "INTEGER";
        case AttributeType::doubleValue:
        case AttributeType::date:
            return "REAL";
        case AttributeType::data:
            return "BLOB";
    }
    return "";
}

std::string StoreSchema::createTableSQL(const EntityDescription& entity) {
    std::string sql = "CREATE TABLE IF NOT EXISTS " + quote(entity.name()) + " (" +
                      quote(kKeyColumn) + " INTEGER PRIMARY KEY";
    for (std::size_t i = 0; i < entity.attributes().size(); ++i) {
        sql += ", " + columnDefinition(entity, static_cast<int>(i));
    }
    return sql + ")";
}

bool StoreSchema::apply(SqliteDatabase& database,
                        const ManagedObjectModel& model,
                        SqliteError* error) {
    bool current = false;
    if (!isCurrent(database, model, current, error)) {
        return false;
    }
    if (current) {
        return true;  // the usual launch: nothing to write, so no write lock is taken
    }
    if (!database.execute("BEGIN IMMEDIATE", error)) {
        return false;
    }
    for (const EntityDescription* entity : model.entities()) {
        if (!bringUp(database, *entity, error)) {
            database.execute("ROLLBACK");
            return false;
        }
    }
    const std::string mark = "PRAGMA user_version = " + std::to_string(fingerprintOf(model));
    if (!database.execute(mark, error) || !database.execute("COMMIT", error)) {
        database.execute("ROLLBACK");
        return false;
    }
    return true;
}

}  // namespace tb

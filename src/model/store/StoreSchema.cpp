#include "model/store/StoreSchema.h"

#include <set>

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

// Whether every table, column and index of the model is in the file already, read in one
// statement (this is also the read that loads the schema).
bool isCurrent(SqliteDatabase& database,
               const ManagedObjectModel& model,
               bool& current,
               SqliteError* error) {
    auto statement = database.prepare(
        "SELECT m.name, p.name FROM sqlite_master AS m, pragma_table_info(m.name) AS p "
        "WHERE m.type = 'table' UNION ALL "
        "SELECT '', name FROM sqlite_master WHERE type = 'index'",
        error);
    if (!statement) {
        return false;
    }
    std::set<std::string> names;  // "table.column", and ".index"
    while (true) {
        const auto step = statement->step(error);
        if (step == SqliteStatement::Step::error) {
            return false;
        }
        if (step == SqliteStatement::Step::done) {
            break;
        }
        names.insert(std::string(statement->columnText(0)) + "." +
                     std::string(statement->columnText(1)));
    }
    current = true;
    for (const EntityDescription* entity : model.entities()) {
        for (const AttributeDescription& attribute : entity->attributes()) {
            current = current && names.count(entity->name() + "." + attribute.name()) &&
                      (!attribute.isIndexed() ||
                       names.count("." + entity->name() + "_" + attribute.name()));
        }
    }
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
    if (!database.execute("COMMIT", error)) {
        database.execute("ROLLBACK");
        return false;
    }
    return true;
}

}  // namespace tb

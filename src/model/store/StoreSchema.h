#pragma once

#include <string>

namespace tb {

class EntityDescription;
class ManagedObjectModel;
class SqliteDatabase;
struct SqliteError;

// The tables of a model in a store file, and their lightweight migration: a table per entity
// (named as the entity, a "pk" key column, a column per attribute, named as the attribute),
// new entities become tables, new attributes become columns holding their default, indexed
// attributes get an index. Columns and tables the model doesn't know are left alone.
class StoreSchema {
  public:
    // Reads the file's schema and brings it up to the model, in one transaction (none when
    // the file is up to date already).
    static bool apply(SqliteDatabase& database,
                      const ManagedObjectModel& model,
                      SqliteError* error);
    static std::string createTableSQL(const EntityDescription& entity);
    static std::string columnType(const EntityDescription& entity, int attributeIndex);
};

}  // namespace tb

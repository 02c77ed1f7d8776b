#pragma once

#include <string>
#include <vector>

namespace tb {

class EntityDescription;
class PredicateArgument;
class SqliteStatement;
struct PredicateNode;

// A predicate turned into the condition of a WHERE clause over its entity's table.
struct CompiledPredicate {
    struct Binding {
        int parameter;  // the ?N of the SQL
        int argument;   // index into the predicate's arguments
        bool array;     // bound as a JSON array for json_each()
    };
    std::string sql;
    std::vector<Binding> bindings;
};

// Compiles predicate trees to SQL. Attributes become quoted column names, literals SQL
// literals, and each argument one numbered parameter. A name that is not an attribute of
// the entity is a programming fault.
class PredicateCompiler {
  public:
    static CompiledPredicate compile(const PredicateNode& root,
                                     const EntityDescription& entity,
                                     int firstParameter);
    static void bind(const CompiledPredicate& predicate,
                     const std::vector<PredicateArgument>& arguments,
                     SqliteStatement& statement);
    // "name" with quotes doubled.
    static std::string quoteIdentifier(const std::string& name);
};

}  // namespace tb

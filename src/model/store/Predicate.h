#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/store/PredicateArgument.h"

namespace tb {

struct PredicateNode;

// A filter over one entity's rows, written as the app writes them:
//
//     Predicate::withFormat("(downloaded == 1) && (itemID IN %@)", {ids})
//     Predicate::withFormat("title CONTAINS[cd] %@ || artist CONTAINS[cd] %@", {q, q})
//
// Each distinct format is parsed once (see PredicateParser for the language) and the store
// compiles it once per entity to SQL with bound arguments. Comparisons follow the app's
// rules rather than SQL's three-valued logic: "x == nil" and "x != nil" test for nil, "!="
// is true for a nil attribute, NOT of a comparison with a nil attribute is true, and IN an
// empty array is false. CONTAINS, BEGINSWITH and ENDSWITH with an empty string are true.
// A predicate is a small value: copying it copies its arguments only.
class Predicate {
  public:
    static Predicate withFormat(std::string_view format,
                                std::vector<PredicateArgument> arguments = {});
    static Predicate andPredicateWithSubpredicates(const std::vector<Predicate>& subpredicates);
    static Predicate orPredicateWithSubpredicates(const std::vector<Predicate>& subpredicates);
    static Predicate notPredicateWithSubpredicate(const Predicate& subpredicate);

    const PredicateNode& root() const { return *root_; }
    const std::vector<PredicateArgument>& arguments() const { return arguments_; }
    // The identity of the predicate's form, the same for every predicate made from the same
    // format(s): the key of the store's compiled statements.
    const std::string& key() const;
    // The canonical text, arguments included: "(downloaded == 1 AND itemID IN {"a", "b"})".
    std::string description() const;

  private:
    Predicate(std::shared_ptr<const PredicateNode> root, std::vector<PredicateArgument> arguments);
    static Predicate compound(int kind, const std::vector<Predicate>& subpredicates);

    std::shared_ptr<const PredicateNode> root_;
    std::vector<PredicateArgument> arguments_;
};

}  // namespace tb

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "model/store/PredicateArgument.h"

namespace tb {

// One side of a comparison: an attribute, a %@ of the format, or a literal.
struct PredicateOperand {
    enum class Kind { keyPath, placeholder, literal };
    Kind kind = Kind::literal;
    std::string keyPath;
    int placeholder = -1;  // 0-based, in the order of the format
    PredicateArgument::Scalar literal;
};

enum class PredicateOperator {
    equal,
    notEqual,
    less,
    lessOrEqual,
    greater,
    greaterOrEqual,
    in,
    contains,
    beginsWith,
    endsWith,
};

// The parsed form of a predicate. Immutable once made, and shared by every predicate made
// from the same format.
struct PredicateNode {
    enum class Kind {
        truePredicate,
        falsePredicate,
        comparison,
        notPredicate,
        andPredicate,
        orPredicate
    };
    Kind kind = Kind::truePredicate;

    // A comparison.
    PredicateOperand lhs;
    PredicateOperator op = PredicateOperator::equal;
    unsigned foldOptions = 0;  // TextFolding options from [c], [d], [cd]
    PredicateOperand rhs;

    // NOT, AND, OR.
    std::vector<std::shared_ptr<const PredicateNode>> children;
    // For compounds of separately made predicates: where each child's arguments start.
    // Empty inside one format, whose placeholders are numbered throughout.
    std::vector<int> childArgumentOffsets;

    int placeholderCount = 0;  // of the whole tree
    std::string key;           // the identity of the tree for caches: its format(s)

    // The tree in a canonical text: "(downloaded == 1 AND itemID IN %@)".
    std::string description() const;
};

}  // namespace tb

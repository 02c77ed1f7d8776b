#include "model/store/PredicateNode.h"

#include "model/store/TextFolding.h"

namespace tb {

namespace {

std::string operandText(const PredicateOperand& operand) {
    switch (operand.kind) {
        case PredicateOperand::Kind::keyPath:
            return operand.keyPath;
        case PredicateOperand::Kind::placeholder:
            return "%@";
        case PredicateOperand::Kind::literal:
            break;
    }
    return PredicateArgument::literal(operand.literal, PredicateArgument::Style::text);
}

const char* operatorText(PredicateOperator op) {
    switch (op) {
        case PredicateOperator::equal:
            return "==";
        case PredicateOperator::notEqual:
            return "!=";
        case PredicateOperator::less:
            return "<";
        case PredicateOperator::lessOrEqual:
            return "<=";
        case PredicateOperator::greater:
            return ">";
        case PredicateOperator::greaterOrEqual:
            return ">=";
        case PredicateOperator::in:
            return "IN";
        case PredicateOperator::contains:
            return "CONTAINS";
        case PredicateOperator::beginsWith:
            return "BEGINSWITH";
        case PredicateOperator::endsWith:
            return "ENDSWITH";
    }
    return "?";
}

}  // namespace

std::string PredicateNode::description() const {
    switch (kind) {
        case Kind::truePredicate:
            return "TRUEPREDICATE";
        case Kind::falsePredicate:
            return "FALSEPREDICATE";
        case Kind::comparison: {
            std::string text = operandText(lhs) + " " + operatorText(op);
            if (foldOptions) {
                text += "[";
                text += (foldOptions & TextFolding::kCaseInsensitive) ? "c" : "";
                text += (foldOptions & TextFolding::kDiacriticInsensitive) ? "d" : "";
                text += "]";
            }
            return text + " " + operandText(rhs);
        }
        case Kind::notPredicate:
            return "NOT " + children.front()->description();
        case Kind::andPredicate:
        case Kind::orPredicate: {
            std::string text = "(";
            for (std::size_t i = 0; i < children.size(); ++i) {
                if (i > 0) {
                    text += kind == Kind::andPredicate ? " AND " : " OR ";
                }
                text += children[i]->description();
            }
            return text + ")";
        }
    }
    return "";
}

}  // namespace tb

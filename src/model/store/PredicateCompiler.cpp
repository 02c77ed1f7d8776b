#include "model/store/PredicateCompiler.h"

#include "model/store/EntityDescription.h"
#include "model/store/PredicateArgument.h"
#include "model/store/PredicateNode.h"
#include "model/store/SqliteStatement.h"
#include "platform/Fatal.h"

namespace tb {

namespace {

class Compiler {
  public:
    Compiler(const PredicateNode& root, const EntityDescription& entity, int firstParameter)
        : root_(root), entity_(entity), firstParameter_(firstParameter) {}

    CompiledPredicate run() {
        CompiledPredicate compiled;
        compiled.sql = node(root_, 0);
        compiled.bindings = std::move(bindings_);
        return compiled;
    }

  private:
    std::string node(const PredicateNode& node, int argumentBase) {
        switch (node.kind) {
            case PredicateNode::Kind::truePredicate:
                return "1";
            case PredicateNode::Kind::falsePredicate:
                return "0";
            case PredicateNode::Kind::comparison:
                return comparison(node, argumentBase);
            case PredicateNode::Kind::notPredicate:
                // A comparison with NULL is NULL in SQL, and NOT NULL would drop the row; the
                // app's rule is that such a comparison is false, so its negation is true.
                return "NOT COALESCE(" + child(node, 0, argumentBase) + ", 0)";
            case PredicateNode::Kind::andPredicate:
            case PredicateNode::Kind::orPredicate: {
                std::string sql = "(";
                for (std::size_t i = 0; i < node.children.size(); ++i) {
                    if (i > 0) {
                        sql += node.kind == PredicateNode::Kind::andPredicate ? " AND " : " OR ";
                    }
                    sql += child(node, i, argumentBase);
                }
                return sql + ")";
            }
        }
        return "0";
    }

    std::string child(const PredicateNode& parent, std::size_t index, int argumentBase) {
        int base = argumentBase;
        if (!parent.childArgumentOffsets.empty()) {
            base += parent.childArgumentOffsets[index];
        }
        return node(*parent.children[index], base);
    }

    std::string comparison(const PredicateNode& node, int argumentBase) {
        std::string lhs = operand(node.lhs, argumentBase, false);
        bool arrayRight = node.op == PredicateOperator::in;
        std::string rhs = operand(node.rhs, argumentBase, arrayRight);
        std::string options = std::to_string(node.foldOptions);
        auto folded = [&](const std::string& sql) {
            return node.foldOptions ? "tb_fold(" + sql + ", " + options + ")" : sql;
        };
        switch (node.op) {
            case PredicateOperator::equal:
                return folded(lhs) + " IS " + folded(rhs);
            case PredicateOperator::notEqual:
                return folded(lhs) + " IS NOT " + folded(rhs);
            case PredicateOperator::less:
                return folded(lhs) + " < " + folded(rhs);
            case PredicateOperator::lessOrEqual:
                return folded(lhs) + " <= " + folded(rhs);
            case PredicateOperator::greater:
                return folded(lhs) + " > " + folded(rhs);
            case PredicateOperator::greaterOrEqual:
                return folded(lhs) + " >= " + folded(rhs);
            case PredicateOperator::in:
                return folded(lhs) + " IN (SELECT " + folded("value") + " FROM json_each(" + rhs +
                       "))";
            // Text never contains, begins or ends with the empty text, as the app's
            // predicates have it; SQLite's instr() finds it at 1 in everything.
            case PredicateOperator::contains:
                // A folded search runs without handing each folded row back to SQLite.
                return node.foldOptions
                           ? "tb_contains(" + lhs + ", " + rhs + ", " + options + ")"
                           : "(instr(" + lhs + ", " + rhs + ") > 0 AND length(" + rhs + ") > 0)";
            case PredicateOperator::beginsWith:
                return "(instr(" + folded(lhs) + ", " + folded(rhs) + ") = 1 AND length(" +
                       folded(rhs) + ") > 0)";
            case PredicateOperator::endsWith:
                return "(substr(" + folded(lhs) + ", -length(" + folded(rhs) +
                       ")) = " + folded(rhs) + " AND length(" + folded(rhs) + ") > 0)";
        }
        return "0";
    }

    std::string operand(const PredicateOperand& operand, int argumentBase, bool array) {
        switch (operand.kind) {
            case PredicateOperand::Kind::keyPath:
                if (!entity_.attributeNamed(operand.keyPath)) {
                    TB_FATAL("The predicate \"" + root_.key + "\" names '" + operand.keyPath +
                             "', which is not an attribute of the entity " + entity_.name());
                }
                return PredicateCompiler::quoteIdentifier(operand.keyPath);
            case PredicateOperand::Kind::placeholder: {
                int argument = argumentBase + operand.placeholder;
                int parameter = firstParameter_ + argument;
                bindings_.push_back({parameter, argument, array});
                return "?" + std::to_string(parameter);
            }
            case PredicateOperand::Kind::literal:
                return PredicateArgument::literal(operand.literal, PredicateArgument::Style::sql);
        }
        return "NULL";
    }

    const PredicateNode& root_;
    const EntityDescription& entity_;
    int firstParameter_;
    std::vector<CompiledPredicate::Binding> bindings_;
};

void bindScalar(SqliteStatement& statement, int parameter, const PredicateArgument::Scalar& value) {
    if (const bool* b = std::get_if<bool>(&value)) {
        statement.bindInt64(parameter, *b ? 1 : 0);
    } else if (const std::int64_t* i = std::get_if<std::int64_t>(&value)) {
        statement.bindInt64(parameter, *i);
    } else if (const double* d = std::get_if<double>(&value)) {
        statement.bindDouble(parameter, *d);
    } else if (const std::string* s = std::get_if<std::string>(&value)) {
        statement.bindTextNoCopy(parameter, *s);
    } else {
        statement.bindNull(parameter);
    }
}

}  // namespace

CompiledPredicate PredicateCompiler::compile(const PredicateNode& root,
                                             const EntityDescription& entity,
                                             int firstParameter) {
    return Compiler(root, entity, firstParameter).run();
}

void PredicateCompiler::bind(const CompiledPredicate& predicate,
                             const std::vector<PredicateArgument>& arguments,
                             SqliteStatement& statement) {
    for (const CompiledPredicate::Binding& binding : predicate.bindings) {
        const PredicateArgument& argument = arguments[static_cast<std::size_t>(binding.argument)];
        if (binding.array) {
            statement.bindText(binding.parameter, argument.elementsAsJson());
        } else {
            bindScalar(statement, binding.parameter, argument.scalar());
        }
    }
}

std::string PredicateCompiler::quoteIdentifier(const std::string& name) {
    std::string quoted = "\"";
    for (char c : name) {
        quoted += c;
        if (c == '"') {
            quoted += '"';
        }
    }
    return quoted + "\"";
}

}  // namespace tb

#include "model/store/Predicate.h"

#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

#include "model/store/PredicateNode.h"
#include "model/store/PredicateParser.h"
#include "platform/Fatal.h"

namespace tb {

namespace {

// Parsed formats by their text. The app writes a fixed set of formats, so the cache stays
// small; formats built from data (which the app shouldn't write) are capped.
class FormatCache {
  public:
    std::shared_ptr<const PredicateNode> nodeFor(std::string_view format) {
        std::lock_guard lock(mutex_);
        auto it = nodes_.find(std::string(format));
        if (it != nodes_.end()) {
            return it->second;
        }
        if (nodes_.size() >= kCapacity) {
            nodes_.clear();
        }
        std::shared_ptr<const PredicateNode> node = PredicateParser::parse(format);
        nodes_.emplace(std::string(format), node);
        return node;
    }

  private:
    static constexpr std::size_t kCapacity = 1024;
    std::mutex mutex_;
    std::unordered_map<std::string, std::shared_ptr<const PredicateNode>> nodes_;
};

// A pure memo of immutable parse trees: holding it process-wide changes no behaviour. Made
// on first use, so that a predicate built during static initialisation finds it ready.
FormatCache& formatCache() {
    static FormatCache cache;
    return cache;
}

// Which placeholders stand on the right of IN (and so take an array).
void collectArrayPlaceholders(const PredicateNode& node, std::vector<bool>& isArray) {
    if (node.kind == PredicateNode::Kind::comparison) {
        for (const PredicateOperand* operand : {&node.lhs, &node.rhs}) {
            if (operand->kind == PredicateOperand::Kind::placeholder) {
                isArray[static_cast<std::size_t>(operand->placeholder)] =
                    node.op == PredicateOperator::in && operand == &node.rhs;
            }
        }
    }
    for (const auto& child : node.children) {
        collectArrayPlaceholders(*child, isArray);
    }
}

std::string substituted(const std::string& text, const std::vector<PredicateArgument>& arguments) {
    std::string out;
    std::size_t next = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.compare(i, 2, "%@") == 0 && next < arguments.size()) {
            out += arguments[next++].description();
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

}  // namespace

Predicate::Predicate(std::shared_ptr<const PredicateNode> root,
                     std::vector<PredicateArgument> arguments)
    : root_(std::move(root)), arguments_(std::move(arguments)) {}

Predicate Predicate::withFormat(std::string_view format, std::vector<PredicateArgument> arguments) {
    auto root = formatCache().nodeFor(format);
    if (static_cast<std::size_t>(root->placeholderCount) != arguments.size()) {
        TB_FATAL("The predicate format \"" + std::string(format) + "\" takes " +
                 std::to_string(root->placeholderCount) + " arguments, but " +
                 std::to_string(arguments.size()) + " were given");
    }
    std::vector<bool> isArray(arguments.size(), false);
    collectArrayPlaceholders(*root, isArray);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (isArray[i] != arguments[i].isArray()) {
            TB_FATAL("The predicate format \"" + std::string(format) + "\": argument " +
                     std::to_string(i + 1) +
                     (isArray[i] ? " must be an array (it stands after IN)"
                                 : " must not be an array (only IN takes one)"));
        }
    }
    return Predicate(std::move(root), std::move(arguments));
}

Predicate Predicate::compound(int kind, const std::vector<Predicate>& subpredicates) {
    auto node = std::make_shared<PredicateNode>();
    node->kind = static_cast<PredicateNode::Kind>(kind);
    std::vector<PredicateArgument> arguments;
    node->key = kind == static_cast<int>(PredicateNode::Kind::orPredicate)    ? "OR("
                : kind == static_cast<int>(PredicateNode::Kind::notPredicate) ? "NOT("
                                                                              : "AND(";
    for (std::size_t i = 0; i < subpredicates.size(); ++i) {
        const Predicate& sub = subpredicates[i];
        node->children.push_back(sub.root_);
        node->childArgumentOffsets.push_back(static_cast<int>(arguments.size()));
        arguments.insert(arguments.end(), sub.arguments_.begin(), sub.arguments_.end());
        node->key += (i > 0 ? "\x1f" : "") + sub.key();
    }
    node->key += ")";
    node->placeholderCount = static_cast<int>(arguments.size());
    return Predicate(std::move(node), std::move(arguments));
}

Predicate Predicate::andPredicateWithSubpredicates(const std::vector<Predicate>& subpredicates) {
    if (subpredicates.empty()) {
        return withFormat("TRUEPREDICATE");
    }
    return compound(static_cast<int>(PredicateNode::Kind::andPredicate), subpredicates);
}

Predicate Predicate::orPredicateWithSubpredicates(const std::vector<Predicate>& subpredicates) {
    if (subpredicates.empty()) {
        return withFormat("FALSEPREDICATE");
    }
    return compound(static_cast<int>(PredicateNode::Kind::orPredicate), subpredicates);
}

Predicate Predicate::notPredicateWithSubpredicate(const Predicate& subpredicate) {
    return compound(static_cast<int>(PredicateNode::Kind::notPredicate), {subpredicate});
}

const std::string& Predicate::key() const {
    return root_->key;
}

std::string Predicate::description() const {
    return substituted(root_->description(), arguments_);
}

}  // namespace tb

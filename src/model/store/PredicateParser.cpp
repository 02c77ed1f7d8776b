#include "model/store/PredicateParser.h"

#include <cctype>
#include <charconv>

#include "model/store/TextFolding.h"
#include "platform/Fatal.h"

namespace tb {

namespace {

constexpr int kMaxDepth = 64;

bool isWordStart(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) || c == '_';
}

bool isWordChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::toupper(static_cast<unsigned char>(a[i])) !=
            std::toupper(static_cast<unsigned char>(b[i]))) {
            return false;
        }
    }
    return true;
}

constexpr std::string_view kReserved[] = {
    "AND",     "OR",  "NOT",  "IN",    "CONTAINS", "BEGINSWITH", "ENDSWITH",      "LIKE",
    "MATCHES", "ANY", "ALL",  "SOME",  "NONE",     "BETWEEN",    "TRUEPREDICATE", "FALSEPREDICATE",
    "YES",     "NO",  "TRUE", "FALSE", "NULL",     "NIL",        "SELF",
};

bool isReserved(std::string_view word) {
    for (std::string_view reserved : kReserved) {
        if (equalsIgnoringCase(word, reserved)) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::shared_ptr<PredicateNode> PredicateParser::parse(std::string_view format) {
    PredicateParser parser(format);
    parser.skipSpace();
    if (parser.atEnd()) {
        parser.fail(0, "the format is empty");
    }
    auto root = parser.parseOr();
    if (!parser.atEnd()) {
        parser.fail(parser.at_, "unexpected text");
    }
    root->placeholderCount = parser.placeholders_;
    root->key = std::string(format);
    return root;
}

void PredicateParser::fail(std::size_t at, const std::string& what) const {
    TB_FATAL("Unable to parse the predicate format \"" + std::string(format_) + "\": " + what +
             " at position " + std::to_string(at));
}

void PredicateParser::skipSpace() {
    while (at_ < format_.size() && std::isspace(static_cast<unsigned char>(format_[at_]))) {
        ++at_;
    }
}

bool PredicateParser::atEnd() {
    skipSpace();
    return at_ >= format_.size();
}

bool PredicateParser::consumeSymbol(std::string_view symbol) {
    skipSpace();
    if (format_.substr(at_, symbol.size()) != symbol) {
        return false;
    }
    at_ += symbol.size();
    return true;
}

std::string_view PredicateParser::peekWord() {
    skipSpace();
    std::size_t end = at_;
    if (end < format_.size() && isWordStart(format_[end])) {
        while (end < format_.size() && isWordChar(format_[end])) {
            ++end;
        }
    }
    return format_.substr(at_, end - at_);
}

bool PredicateParser::consumeKeyword(std::string_view keyword) {
    if (!equalsIgnoringCase(peekWord(), keyword)) {
        return false;
    }
    at_ += keyword.size();
    return true;
}

std::shared_ptr<PredicateNode> PredicateParser::parseOr() {
    return parseChain(PredicateNode::Kind::orPredicate, "||", "OR", &PredicateParser::parseAnd);
}

std::shared_ptr<PredicateNode> PredicateParser::parseAnd() {
    return parseChain(PredicateNode::Kind::andPredicate, "&&", "AND", &PredicateParser::parseNot);
}

std::shared_ptr<PredicateNode> PredicateParser::parseChain(
    PredicateNode::Kind kind,
    std::string_view symbol,
    std::string_view keyword,
    std::shared_ptr<PredicateNode> (PredicateParser::*next)()) {
    auto first = (this->*next)();
    std::shared_ptr<PredicateNode> compound;
    while (consumeSymbol(symbol) || consumeKeyword(keyword)) {
        if (!compound) {
            compound = std::make_shared<PredicateNode>();
            compound->kind = kind;
            compound->children.push_back(first);
        }
        compound->children.push_back((this->*next)());
    }
    return compound ? compound : first;
}

std::shared_ptr<PredicateNode> PredicateParser::parseNot() {
    skipSpace();
    bool negated = false;
    if (format_.substr(at_, 1) == "!" && format_.substr(at_, 2) != "!=") {
        ++at_;
        negated = true;
    } else if (consumeKeyword("NOT")) {
        negated = true;
    }
    if (!negated) {
        return parsePrimary();
    }
    if (++depth_ > kMaxDepth) {
        fail(at_, "the predicate nests too deeply");
    }
    auto node = std::make_shared<PredicateNode>();
    node->kind = PredicateNode::Kind::notPredicate;
    node->children.push_back(parseNot());
    --depth_;
    return node;
}

std::shared_ptr<PredicateNode> PredicateParser::parsePrimary() {
    skipSpace();
    if (consumeSymbol("(")) {
        if (++depth_ > kMaxDepth) {
            fail(at_, "the predicate nests too deeply");
        }
        auto inner = parseOr();
        if (!consumeSymbol(")")) {
            fail(at_, "expected ')'");
        }
        --depth_;
        return inner;
    }
    if (consumeKeyword("TRUEPREDICATE")) {
        auto node = std::make_shared<PredicateNode>();
        node->kind = PredicateNode::Kind::truePredicate;
        return node;
    }
    if (consumeKeyword("FALSEPREDICATE")) {
        auto node = std::make_shared<PredicateNode>();
        node->kind = PredicateNode::Kind::falsePredicate;
        return node;
    }
    return parseComparison();
}

std::shared_ptr<PredicateNode> PredicateParser::parseComparison() {
    auto node = std::make_shared<PredicateNode>();
    node->kind = PredicateNode::Kind::comparison;
    node->lhs = parseOperand();
    node->op = parseOperator(node->foldOptions);
    std::size_t rhsAt = at_;
    node->rhs = parseOperand();
    if (node->op == PredicateOperator::in &&
        node->rhs.kind != PredicateOperand::Kind::placeholder) {
        fail(rhsAt, "IN needs %@ (an array argument) on its right");
    }
    return node;
}

PredicateOperand PredicateParser::parseOperand() {
    skipSpace();
    std::size_t start = at_;
    PredicateOperand operand;
    if (atEnd()) {
        fail(start, "expected an attribute, a value or %@, found the end");
    }
    char c = format_[at_];
    if (c == '%') {
        static constexpr std::string_view kPlaceholders[] = {"%@", "%lld", "%llu", "%ld", "%lu",
                                                             "%d", "%i",   "%u",   "%f"};
        for (std::string_view placeholder : kPlaceholders) {
            if (format_.substr(at_, placeholder.size()) == placeholder) {
                at_ += placeholder.size();
                operand.kind = PredicateOperand::Kind::placeholder;
                operand.placeholder = placeholders_++;
                return operand;
            }
        }
        fail(start, "unsupported format specifier");
    }
    if (c == '"' || c == '\'') {
        std::string text;
        ++at_;
        while (true) {
            if (at_ >= format_.size()) {
                fail(start, "unterminated string");
            }
            char d = format_[at_++];
            if (d == c) {
                break;
            }
            if (d == '\\' && at_ < format_.size()) {
                char e = format_[at_++];
                text += e == 'n' ? '\n' : e == 't' ? '\t' : e;
                continue;
            }
            text += d;
        }
        operand.literal = std::move(text);
        return operand;
    }
    if (std::isdigit(static_cast<unsigned char>(c)) || c == '-' || c == '+' || c == '.') {
        std::size_t end = at_ + 1;
        bool real = c == '.';
        while (end < format_.size()) {
            char d = format_[end];
            if (std::isdigit(static_cast<unsigned char>(d))) {
                ++end;
            } else if (d == '.' || d == 'e' || d == 'E') {
                real = true;
                ++end;
                if ((d == 'e' || d == 'E') && end < format_.size() &&
                    (format_[end] == '-' || format_[end] == '+')) {
                    ++end;
                }
            } else {
                break;
            }
        }
        std::string_view text = format_.substr(at_, end - at_);
        if (!text.empty() && text.front() == '+') {
            text.remove_prefix(1);
        }
        const char* first = text.data();
        const char* last = text.data() + text.size();
        std::from_chars_result result{};
        if (real) {
            double value = 0;
            result = std::from_chars(first, last, value);
            operand.literal = value;
        } else {
            std::int64_t value = 0;
            result = std::from_chars(first, last, value);
            operand.literal = value;
        }
        if (result.ec != std::errc() || result.ptr != last) {
            fail(start, "malformed number");
        }
        at_ = end;
        return operand;
    }
    std::string_view word = peekWord();
    if (word.empty()) {
        fail(start, "expected an attribute, a value or %@");
    }
    if (equalsIgnoringCase(word, "YES") || equalsIgnoringCase(word, "TRUE")) {
        at_ += word.size();
        operand.literal = true;
        return operand;
    }
    if (equalsIgnoringCase(word, "NO") || equalsIgnoringCase(word, "FALSE")) {
        at_ += word.size();
        operand.literal = false;
        return operand;
    }
    if (equalsIgnoringCase(word, "NULL") || equalsIgnoringCase(word, "NIL")) {
        at_ += word.size();
        return operand;  // a nil literal
    }
    if (isReserved(word)) {
        fail(start, "unsupported or misplaced keyword '" + std::string(word) + "'");
    }
    at_ += word.size();
    if (at_ < format_.size() && format_[at_] == '.') {
        fail(at_, "key paths through relationships are not supported");
    }
    operand.kind = PredicateOperand::Kind::keyPath;
    operand.keyPath = std::string(word);
    return operand;
}

PredicateOperator PredicateParser::parseOperator(unsigned& foldOptions) {
    skipSpace();
    std::size_t start = at_;
    struct Symbol {
        std::string_view text;
        PredicateOperator op;
    };
    static constexpr Symbol kSymbols[] = {
        {"==", PredicateOperator::equal},
        {"!=", PredicateOperator::notEqual},
        {"<>", PredicateOperator::notEqual},
        {"<=", PredicateOperator::lessOrEqual},
        {"=<", PredicateOperator::lessOrEqual},
        {">=", PredicateOperator::greaterOrEqual},
        {"=>", PredicateOperator::greaterOrEqual},
        {"=", PredicateOperator::equal},
        {"<", PredicateOperator::less},
        {">", PredicateOperator::greater},
    };
    static constexpr Symbol kWords[] = {
        {"IN", PredicateOperator::in},
        {"CONTAINS", PredicateOperator::contains},
        {"BEGINSWITH", PredicateOperator::beginsWith},
        {"ENDSWITH", PredicateOperator::endsWith},
    };
    for (const Symbol& symbol : kSymbols) {
        if (consumeSymbol(symbol.text)) {
            foldOptions = parseOptions();
            return symbol.op;
        }
    }
    for (const Symbol& word : kWords) {
        if (consumeKeyword(word.text)) {
            foldOptions = parseOptions();
            return word.op;
        }
    }
    if (atEnd()) {
        fail(start, "expected a comparison operator, found the end");
    }
    fail(start, "expected a comparison operator");
}

unsigned PredicateParser::parseOptions() {
    if (at_ >= format_.size() || format_[at_] != '[') {
        return 0;
    }
    std::size_t start = at_++;
    unsigned options = 0;
    while (at_ < format_.size() && format_[at_] != ']') {
        switch (format_[at_++]) {
            case 'c':
                options |= TextFolding::kCaseInsensitive;
                break;
            case 'd':
                options |= TextFolding::kDiacriticInsensitive;
                break;
            case 'n':
                break;  // already normalised: nothing to do
            default:
                fail(at_ - 1, "unknown comparison option");
        }
    }
    if (at_ >= format_.size()) {
        fail(start, "unterminated comparison options");
    }
    ++at_;
    return options;
}

}  // namespace tb

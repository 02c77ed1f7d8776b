#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "model/store/PredicateNode.h"

namespace tb {

// Reads a predicate format as the app writes it:
//
//   comparisons   ==  =  !=  <>  <  <=  =<  >  >=  =>  IN  CONTAINS  BEGINSWITH  ENDSWITH,
//                 each optionally followed by [c], [d] or [cd]
//   logic         &&  AND  ||  OR  !  NOT, parentheses, TRUEPREDICATE, FALSEPREDICATE
//   operands      attribute names; %@ (also %d %i %ld %lld %u %lu %f); numbers; "text" or
//                 'text'; YES NO TRUE FALSE; NULL NIL
//
// Keywords are case-insensitive. A format outside this language is a programming fault:
// the process stops with a message naming the format and the position.
class PredicateParser {
  public:
    static std::shared_ptr<PredicateNode> parse(std::string_view format);

  private:
    explicit PredicateParser(std::string_view format) : format_(format) {}

    std::shared_ptr<PredicateNode> parseOr();
    std::shared_ptr<PredicateNode> parseAnd();
    // Operands joined by one operator: "a || b || c" is one OR of three.
    std::shared_ptr<PredicateNode> parseChain(
        PredicateNode::Kind kind,
        std::string_view symbol,
        std::string_view keyword,
        std::shared_ptr<PredicateNode> (PredicateParser::*next)());
    std::shared_ptr<PredicateNode> parseNot();
    std::shared_ptr<PredicateNode> parsePrimary();
    std::shared_ptr<PredicateNode> parseComparison();
    PredicateOperand parseOperand();
    PredicateOperator parseOperator(unsigned& foldOptions);
    unsigned parseOptions();

    void skipSpace();
    bool atEnd();
    bool consumeSymbol(std::string_view symbol);
    // A keyword as a whole word, any case.
    bool consumeKeyword(std::string_view keyword);
    std::string_view peekWord();
    [[noreturn]] void fail(std::size_t at, const std::string& what) const;

    std::string_view format_;
    std::size_t at_ = 0;
    int placeholders_ = 0;
    int depth_ = 0;
};

}  // namespace tb

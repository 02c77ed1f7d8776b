#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tb::service {

// One decoded "name=value" pair of a query string or form body. `hasValue` is false for a
// bare "name" without "=": one of the signing schemes drops such items.
struct FormParam {
    std::string name;
    std::string value;
    bool hasValue = true;
};

// Parsing of "a=1&b=2" text, in the order written, by the form rules: "%XX" escapes and "+"
// for a space, in a body and in a URL query alike, so that the decoded text is what a
// standard client signed. Nested names ("entities[][id]") stay as written, since that is
// what the client signs.
class FormParams {
  public:
    static constexpr size_t kMaxParams = 1000;

    // Null when an escape is malformed or there are too many pairs.
    static std::optional<std::vector<FormParam>> parse(std::string_view text);
    static std::optional<std::string> find(const std::vector<FormParam>& params,
                                           std::string_view name);
};

}  // namespace tb::service

#pragma once

#include <string>

namespace tb {

// Where the typed layer's paths are appended (the base URL ends in a slash). Read at each
// request, so that a change of environment reaches the next one.
class APIBaseURLProvider {
  public:
    virtual ~APIBaseURLProvider() = default;
    virtual std::string baseURL() const = 0;
};

}  // namespace tb

#pragma once

#include <string>

#include "platform/JSON.h"

namespace tb::test {

// A JSON answer from tests/model/fixtures, parsed the way the app parses answers.
JSON fixture(const std::string& name);

}  // namespace tb::test

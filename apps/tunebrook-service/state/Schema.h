#pragma once

#include <string>

namespace tb::service {

class Database;

// Creates the service's tables when missing. The catalogue tables are filled once by the
// generator; everything a caller does lives in the other tables.
class Schema {
  public:
    static bool create(Database& db, std::string& error);
};

}  // namespace tb::service

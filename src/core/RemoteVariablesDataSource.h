#pragma once

#include "platform/Promise.h"

namespace tb {

// A source of remote variables: its one operation starts the source's fetch.
class RemoteVariablesDataSource {
  public:
    virtual ~RemoteVariablesDataSource() = default;

    virtual Promise<void> fetch() = 0;
};

}  // namespace tb

#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace tb {

class ManagedObject;

// The records a context made while reading (an album's tracks, a queue restored from the
// bookmarks). They belong to the context, so that a change to one of them is tracked like
// any other, but the context keeps none of them alive: one that is let go unchanged simply
// goes, and never becomes a row. Only the context's thread adds or walks them; the records
// themselves may be let go on any thread.
class ProvisionalRecords {
  public:
    void add(const std::shared_ptr<ManagedObject>& record);
    // Detaches every record still alive that is still provisional, and forgets them all.
    void detachAll();
    // The records still alive and provisional.
    std::size_t size();

  private:
    // Forgets the records that went or stopped being provisional.
    void sweep();

    std::vector<std::weak_ptr<ManagedObject>> records_;
    std::size_t sweepAt_ = 64;
};

}  // namespace tb

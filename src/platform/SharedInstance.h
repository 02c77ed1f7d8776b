#pragma once

#include <utility>

#include "platform/Fatal.h"

namespace tb {

// The instance of T that the composition root installed, for the system's own
// sharedManager()/shared() accessors. Only the root installs; code below it is handed its
// collaborators and never asks here. Installations nest: a Scope restores the instance it
// replaced when it ends, so a test may build a second app while the first is alive.
template <typename T>
class SharedInstance {
  public:
    static T& get() {
        if (!current_) {
            TB_FATAL("No shared instance installed: the app installs them when it is built");
        }
        return *current_;
    }

    static bool installed() { return current_ != nullptr; }

    class Scope {
      public:
        explicit Scope(T& instance) : previous_(std::exchange(current_, &instance)) {}
        ~Scope() { current_ = previous_; }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

      private:
        T* previous_;
    };

  private:
    static inline T* current_ = nullptr;
};

}  // namespace tb

// Marks the span in which a page fills its own controls, so that the notifications the
// controls send back meanwhile are not taken for the user's changes. A scope object: the mark
// goes with the scope, on every return path.
#pragma once

namespace kx20 {

class EchoGuard {
  public:
    // Set while a guard on it lives; guards nest.
    class Flag {
      public:
        bool Filling() const { return depth_ > 0; }

      private:
        friend class EchoGuard;
        int depth_ = 0;
    };

    explicit EchoGuard(Flag& flag) : flag_(flag) { ++flag_.depth_; }
    ~EchoGuard() { --flag_.depth_; }
    EchoGuard(const EchoGuard&) = delete;
    EchoGuard& operator=(const EchoGuard&) = delete;

  private:
    Flag& flag_;
};

}  // namespace kx20

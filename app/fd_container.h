#pragma once

#include <cstdint>
#include <functional>

namespace vgn_control {

/// Owns a descriptor; a negative one is none.
class FdContainer {
 public:
  using Closer = std::function<void(int)>;

  /// Owns `owned_fd` and gives it to `how_to_close` in the end. One thread at a time.
  explicit FdContainer(int owned_fd = -1, Closer how_to_close = closeDescriptor);

  /// As `reset`; ends the program if the closer throws.
  ~FdContainer();

  FdContainer(const FdContainer&) = delete;
  FdContainer& operator=(const FdContainer&) = delete;
  FdContainer(FdContainer&&) = delete;
  FdContainer& operator=(FdContainer&&) = delete;

  /// The descriptor, -1 if none was given or after `reset`. Still owned here.
  int get() const { return fd; }
  explicit operator bool() const { return fd >= 0; }

  /// Gives the descriptor, if there is one, to the closer, then forgets it. What the closer throws comes out of here,
  /// `std::bad_function_call` if it is empty; the descriptor is still owned then.
  void reset();

 private:
  static void closeDescriptor(int descriptor);

  Closer closer;
  int32_t fd;
};

}  // namespace vgn_control

#pragma once

#include <memory>

#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop::x11 {

/// The claim to be the user's one instance on an X display: a selection that is owned, which the server ends
/// with the process however that ends. It is on a connection of its own, so that it can be made before the
/// toolkit, which takes much longer.
class InstanceClaim {
 public:
  /// Null where another process of this user has it on the display that DISPLAY names. Where no server
  /// answers nobody has it.
  static std::unique_ptr<InstanceClaim> make();

 private:
  explicit InstanceClaim(std::unique_ptr<Connection> connection) : connection_(std::move(connection)) {}

  std::unique_ptr<Connection> connection_;
};

}  // namespace lumiscan::desktop::x11

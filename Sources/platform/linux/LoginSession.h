#pragma once

#include <systemd/sd-bus.h>

#include <optional>
#include <string>

#include "platform/Logger.h"
#include "platform/NotificationCenter.h"
#include "platform/linux/ServedBus.h"

namespace lumiscan::desktop {

/// Follows the login manager (logind) on the system bus and posts on the workspace's centre: `screensDidWake`
/// when the machine has slept, `sessionDidBecomeActive` when the user has switched back to this session.
/// Where there is no login manager it posts nothing and says so once in the log. Never waits for the bus.
/// Main thread only.
class LoginSession {
 public:
  /// The centre outlives the object. `DBUS_SYSTEM_BUS_ADDRESS` says which bus, where it is set.
  explicit LoginSession(platform::NotificationCenter& center);
  LoginSession(const LoginSession&) = delete;
  LoginSession& operator=(const LoginSession&) = delete;

 private:
  // What the bus answers and tells; `self` is the object.
  static int sessionIDCame(sd_bus_message* message, void* self, sd_bus_error*);
  static int sessionCame(sd_bus_message* message, void* self, sd_bus_error*);
  static int preparesForSleep(sd_bus_message* message, void* self, sd_bus_error*);
  static int propertiesChanged(sd_bus_message* message, void* self, sd_bus_error*);

  void askForSession(const char* identifier);
  /// For a program that was started outside of the session: the login manager knows whose it is.
  void askForOwnSession();
  void logNothingToFollow(const char* reason);

  platform::NotificationCenter& center_;
  platform::Logger logger_{"workspace"};
  std::optional<ServedBus> bus_;
  bool askedForOwn_ = false;
  bool logged_ = false;
};

}  // namespace lumiscan::desktop

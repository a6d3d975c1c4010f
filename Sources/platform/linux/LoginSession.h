#pragma once

#include <systemd/sd-bus.h>

#include <QSocketNotifier>
#include <memory>
#include <string>

#include "platform/Logger.h"
#include "platform/NotificationCenter.h"

namespace lumiscan::desktop {

/// Follows the login manager (logind) on the system bus and posts on the workspace's centre: `screensDidWake`
/// when the machine has slept, `sessionDidBecomeActive` when the user has switched back to this session.
/// Where there is no login manager it posts nothing and says so once in the log. Never waits for the bus.
/// Main thread only.
class LoginSession {
 public:
  /// The centre outlives the object. `DBUS_SYSTEM_BUS_ADDRESS` says which bus, where it is set.
  explicit LoginSession(platform::NotificationCenter& center);
  ~LoginSession();
  LoginSession(const LoginSession&) = delete;
  LoginSession& operator=(const LoginSession&) = delete;

 private:
  struct CloseBus {
    void operator()(sd_bus* bus) const;
  };
  // What the bus answers and tells; `self` is the object.
  static int sessionIDCame(sd_bus_message* message, void* self, sd_bus_error*);
  static int sessionCame(sd_bus_message* message, void* self, sd_bus_error*);
  static int preparesForSleep(sd_bus_message* message, void* self, sd_bus_error*);
  static int propertiesChanged(sd_bus_message* message, void* self, sd_bus_error*);

  void askForSession(const char* identifier);
  /// For a program that was started outside of the session: the login manager knows whose it is.
  void askForOwnSession();
  void process();
  void logNothingToFollow(const char* reason);

  platform::NotificationCenter& center_;
  platform::Logger logger_{"workspace"};
  std::unique_ptr<sd_bus, CloseBus> bus_;
  std::unique_ptr<QSocketNotifier> readable_;
  std::unique_ptr<QSocketNotifier> writable_;
  bool askedForOwn_ = false;
  bool logged_ = false;
};

}  // namespace lumiscan::desktop

#pragma once

namespace lumiscan::platform {

enum class LoginItemStatus {
  notRegistered = 0,
  enabled = 1,
  requiresApproval = 2,
  notFound = 3,
};

/// The program itself as something that the desktop starts when the user logs in. Main thread only.
class LoginItem {
 public:
  virtual ~LoginItem() = default;

  /// That of the installed desktop.
  static LoginItem& mainApp();

  /// What the desktop has noted, whoever wrote it; read anew at each call.
  virtual LoginItemStatus status() const = 0;
  /// Has the running program started at the next login. Whether that could be noted.
  virtual bool registerItem() = 0;
  /// Takes that back; succeeds when there is nothing to take back.
  virtual bool unregisterItem() = 0;
};

}  // namespace lumiscan::platform

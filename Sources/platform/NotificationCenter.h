#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumiscan::platform {

/// Hands a posted name to everyone who asked for it. Main thread only.
///
/// Posting is synchronous: every observer has run when `post` returns, in the order in which they were
/// added. An observer added while a notification is delivered doesn't receive that one; one removed
/// meanwhile doesn't either.
class NotificationCenter {
 public:
  /// Ends the observation when it goes. May outlive the centre.
  class Observation {
   public:
    ~Observation() = default;

   private:
    friend class NotificationCenter;
    explicit Observation(std::function<void()> h) : handler(std::move(h)) {}
    std::function<void()> handler;
  };

  /// The process's own centre, that of the installed desktop.
  static NotificationCenter& defaultCenter();
  /// The desktop's centre, on which it tells of waking and of the user's session.
  static NotificationCenter& workspaceCenter();

  [[nodiscard]] std::shared_ptr<Observation> addObserver(std::string_view name,
                                                         std::function<void()> handler);
  void post(std::string_view name);

 private:
  struct Entry {
    std::string name;
    std::weak_ptr<Observation> observation;
  };
  std::vector<Entry> entries_;
};

/// Posted on the workspace centre when the displays wake from the machine's sleep.
inline constexpr std::string_view screensDidWake = "workspace.screensDidWake";
/// Posted on the workspace centre when the user's login session becomes the active one again.
inline constexpr std::string_view sessionDidBecomeActive = "workspace.sessionDidBecomeActive";

}  // namespace lumiscan::platform

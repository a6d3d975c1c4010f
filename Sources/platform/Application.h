#pragma once

namespace lumiscan::platform {

/// The program's name to the desktop: that of its desktop entry, its icons and its log lines.
inline constexpr const char* applicationID = "com.varnholt.Lumiscan";

/// Whom the application tells of its life. Main thread only.
class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;
  /// Called once, from the event loop, when the application has started.
  virtual void applicationDidFinishLaunching() = 0;
};

enum class ActivationPolicy {
  regular = 0,    ///< Windows of the program are among those the user switches between.
  accessory = 1,  ///< The program shows itself only as a status item and by windows that it opens.
};

/// The application object of the interactive mode: one a process. Main thread only.
class Application {
 public:
  virtual ~Application() = default;

  /// That of the installed desktop, which makes it at the first call. Precondition:
  /// `Desktop::interactiveModeProblem` has none to tell.
  static Application& shared();

  /// The delegate isn't owned and outlives the event loop.
  virtual void setDelegate(ApplicationDelegate* delegate) = 0;
  virtual void setActivationPolicy(ActivationPolicy policy) = 0;
  /// The main event loop; returns when the application terminates.
  virtual void run() = 0;
  /// Ends the event loop after the current event.
  virtual void terminate() = 0;
  /// Brings the program to the front, in front of the program in which the user is working.
  virtual void activateIgnoringOtherApps() = 0;
  /// The desktop doesn't end the program silently to reclaim resources.
  virtual void disableSuddenTermination() = 0;
};

}  // namespace lumiscan::platform

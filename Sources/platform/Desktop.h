#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <typeindex>
#include <unordered_map>

#include "platform/QRCode.h"

namespace lumiscan::platform {

class Alerts;
class Application;
struct Appearance;
class BarcodeDetector;
class BitmapContext;
class CursorStack;
struct Date;
class Dispatcher;
class Displays;
class HotKeys;
class LoginItem;
class LogSink;
class NotificationCenter;
class Pasteboard;
class Sounds;
class SpeechSynthesizer;
class StatusBar;
class TextRecognizer;
class Typesetter;
class UserDefaults;
class Window;
class WindowPeer;
class Workspace;
struct Point;

/// A whole desktop: makes and owns every part of the platform. `main` installs the real one, a test
/// fixture a simulated one. Parts are made when they are first asked for, so the command-line modes, which
/// never ask for the application object, need no display.
class Desktop {
 public:
  virtual ~Desktop() = default;

  /// The installed desktop. Precondition: there is one. Any thread.
  static Desktop& current();
  /// Makes `desktop` the one in force, or with null none; whoever installs it owns it and takes it out
  /// before it goes.
  static void install(Desktop* desktop);

  /// The process's one `T`, made at the first call and owned by the desktop, so that each simulated desktop
  /// starts with none. Main thread only.
  template <typename T>
  T& singleton() {
    std::shared_ptr<void>& slot = singletons_[std::type_index(typeid(T))];
    if (!slot) slot = std::make_shared<T>();
    return *static_cast<T*>(slot.get());
  }

  /// Why the interactive mode can't run here, as one line for the user; nothing when it can.
  virtual std::optional<std::string> interactiveModeProblem() = 0;
  /// Makes this process the user's one instance on this desktop, for as long as it runs; false when another
  /// one is it. Asked once, before the application object is made.
  virtual bool claimInstance() = 0;

  virtual Application& application() = 0;
  virtual Dispatcher& dispatcher() = 0;
  virtual Date currentDate() = 0;
  virtual UserDefaults& userDefaults() = 0;
  virtual LogSink& logSink() = 0;
  virtual NotificationCenter& notificationCenter() = 0;
  virtual NotificationCenter& workspaceNotificationCenter() = 0;
  virtual Displays& displays() = 0;
  virtual Point mouseLocation() = 0;
  virtual CursorStack& cursors() = 0;
  virtual Pasteboard& pasteboard() = 0;
  virtual Sounds& sounds() = 0;
  virtual SpeechSynthesizer& speechSynthesizer() = 0;
  virtual HotKeys& hotKeys() = 0;
  virtual LoginItem& loginItem() = 0;
  virtual Workspace& workspace() = 0;
  virtual TextRecognizer& textRecognizer() = 0;
  virtual BarcodeDetector& barcodeDetector() = 0;
  virtual StatusBar& statusBar() = 0;
  virtual Alerts& alerts() = 0;
  virtual Appearance appearance() = 0;
  virtual Typesetter& typesetter() = 0;
  virtual std::unique_ptr<WindowPeer> makeWindowPeer(Window& window) = 0;
  virtual std::unique_ptr<BitmapContext> makeBitmapContext(int width, int height) = 0;
  virtual std::optional<Image> generateQRCode(std::string_view message, QRCorrectionLevel level) = 0;

 protected:
  /// For destructors, which call it before the parts go that singletons may still use.
  void dropSingletons() { singletons_.clear(); }

 private:
  std::unordered_map<std::type_index, std::shared_ptr<void>> singletons_;
};

}  // namespace lumiscan::platform

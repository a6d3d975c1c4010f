#include "platform/linux/LinuxDesktop.h"

#include <QGuiApplication>
#include <QScreen>
#include <atomic>
#include <cassert>
#include <cstdlib>
#include <map>
#include <string>

#include "platform/NotificationCenter.h"
#include "platform/linux/Application.h"
#include "platform/linux/Dispatch.h"
#include "platform/linux/Logger.h"
#include "platform/linux/OverlaySession.h"
#include "platform/linux/Pasteboard.h"
#include "platform/linux/UserDefaults.h"
#include "platform/linux/Window.h"
#include "platform/linux/Workspace.h"
#include "platform/linux/drawing/BitmapContext.h"
#include "platform/linux/drawing/QRCode.h"
#include "platform/linux/recognition/BarcodeDetector.h"
#include "platform/linux/recognition/TextRecognizer.h"
#include "platform/linux/x11/Display.h"
#include "platform/linux/x11/HotKeys.h"

namespace lumiscan::desktop {

namespace {

/// How long the end of the program waits for tasks that still run.
constexpr std::chrono::milliseconds tasksPatience(500);
constexpr double recognizerKeptSeconds = 600;

xcb_connection_t* toolkitConnection() {
  return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

/// A rectangle on one screen, from the toolkit's coordinates, in which a screen's origin is in pixels and
/// everything from there on in points, to pixels.
platform::Rect inPixels(const QRect& rect, const QScreen& screen) {
  const QPoint origin = screen.geometry().topLeft();
  const double scale = screen.devicePixelRatio();
  return {{origin.x() + (rect.x() - origin.x()) * scale, origin.y() + (rect.y() - origin.y()) * scale},
          {rect.width() * scale, rect.height() * scale}};
}

/// Tells `displays` what the toolkit knows of the screens, now and at each change, and `overlays` that they
/// changed, as long as `context` lives.
void followToolkitScreens(x11::X11Displays& displays, OverlaySession& overlays, QObject& context) {
  const auto tell = [&displays, &overlays] {
    std::map<std::string, x11::X11Displays::ToolkitScreen> screens;
    for (const QScreen* screen : QGuiApplication::screens())
      screens[screen->name().toStdString()] = {screen->devicePixelRatio(),
                                               inPixels(screen->availableGeometry(), *screen)};
    displays.setToolkitScreens(std::move(screens));
    overlays.screensChanged();
  };
  const auto follow = [tell, &context](QScreen* screen) {
    QObject::connect(screen, &QScreen::geometryChanged, &context, tell);
    QObject::connect(screen, &QScreen::availableGeometryChanged, &context, tell);
    QObject::connect(screen, &QScreen::physicalDotsPerInchChanged, &context, tell);
    QObject::connect(screen, &QScreen::logicalDotsPerInchChanged, &context, tell);
    tell();
  };
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &context, follow);
  QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &context, tell);
  for (QScreen* screen : QGuiApplication::screens()) follow(screen);
}

}  // namespace

/// What needs the application object, made with it.
struct Interactive {
  Interactive(int& argc, char** argv, x11::X11Displays& displays)
      : application(argc, argv), hotKeys(toolkitConnection()), overlays(toolkitConnection(), displays) {
    followToolkitScreens(displays, overlays, screenFollower);
  }

  QtApplication application;
  QtCursorStack cursors;
  QtPasteboard pasteboard;
  x11::X11HotKeys hotKeys;
  OverlaySession overlays;
  QObject screenFollower;
};

struct LinuxDesktop::Parts {
  Parts(int& argumentCount, char** arguments) : argc(argumentCount), argv(arguments) {}

  int& argc;
  char** argv;
  JournalLog log;
  QtDispatcher dispatcher;
  FileUserDefaults userDefaults{FileUserDefaults::defaultFile()};
  platform::NotificationCenter notificationCenter;
  platform::NotificationCenter workspaceNotificationCenter;
  x11::X11Displays displays;
  XdgWorkspace workspace;
  TesseractRecognizer textRecognizer{{
      .runInBackground =
          [this](std::function<void()> work) {
            dispatcher.detach(platform::TaskPriority::userInitiated, std::move(work));
          },
      .logError =
          [](const std::string& line) {
            platform::Logger("com.varnholt.Lumiscan", "recognition").error(line);
          },
  }};
  std::atomic<unsigned> recognizerUses = 0;
  ZXingDetector barcodeDetector;
  std::unique_ptr<Interactive> interactive;

  /// Gives the recogniser's memory back once nobody has used it for long. Any thread. A command-line mode,
  /// which has no event loop, ends before that.
  void recognizerUsed() {
    if (!interactive) return;
    dispatcher.asyncAfter(recognizerKeptSeconds, [this, use = ++recognizerUses] {
      if (use == recognizerUses) textRecognizer.releaseUnused(recognizerKeptSeconds / 2);
    });
  }

  Interactive& needInteractive() {
    assert(dispatcher.isMainThread());
    if (!interactive) interactive = std::make_unique<Interactive>(argc, argv, displays);
    return *interactive;
  }
};

LinuxDesktop::LinuxDesktop(int& argc, char** argv) : parts_(std::make_unique<Parts>(argc, argv)) {
  Desktop::install(this);
}

LinuxDesktop::~LinuxDesktop() {
  dropSingletons();
  // A recognition can't be broken off. Nothing waits for its result any more and everything is saved, so
  // the process ends around it.
  parts_->dispatcher.dropWaitingTasks();
  if (!parts_->dispatcher.waitForTasks(tasksPatience)) std::_Exit(EXIT_SUCCESS);
  parts_.reset();
  Desktop::install(nullptr);
}

std::optional<std::string> LinuxDesktop::interactiveModeProblem() {
  if (parts_->displays.preflightScreenCaptureAccess()) return std::nullopt;
  const char* name = std::getenv("DISPLAY");
  if (!name || !*name) return "no X display: DISPLAY is not set";
  return std::string("no X display answers at DISPLAY=") + name;
}

platform::Application& LinuxDesktop::application() { return parts_->needInteractive().application; }
platform::Dispatcher& LinuxDesktop::dispatcher() { return parts_->dispatcher; }
platform::UserDefaults& LinuxDesktop::userDefaults() { return parts_->userDefaults; }
platform::LogSink& LinuxDesktop::logSink() { return parts_->log; }
platform::NotificationCenter& LinuxDesktop::notificationCenter() { return parts_->notificationCenter; }
platform::NotificationCenter& LinuxDesktop::workspaceNotificationCenter() {
  return parts_->workspaceNotificationCenter;
}
platform::Displays& LinuxDesktop::displays() { return parts_->displays; }
platform::Point LinuxDesktop::mouseLocation() { return parts_->displays.mouseLocation(); }
platform::CursorStack& LinuxDesktop::cursors() { return parts_->needInteractive().cursors; }
platform::Pasteboard& LinuxDesktop::pasteboard() { return parts_->needInteractive().pasteboard; }
platform::HotKeys& LinuxDesktop::hotKeys() { return parts_->needInteractive().hotKeys; }
platform::Workspace& LinuxDesktop::workspace() { return parts_->workspace; }
platform::TextRecognizer& LinuxDesktop::textRecognizer() {
  parts_->recognizerUsed();
  return parts_->textRecognizer;
}
platform::BarcodeDetector& LinuxDesktop::barcodeDetector() { return parts_->barcodeDetector; }

std::unique_ptr<platform::WindowPeer> LinuxDesktop::makeWindowPeer(platform::Window& window) {
  OverlaySession& overlays = parts_->needInteractive().overlays;
  const bool isOverlay = window.attributes().level > platform::windowLevelScreenSaver;
  if (!isOverlay) overlays.freezeAll();
  return std::make_unique<OverlayPeer>(window, overlays);
}

std::unique_ptr<platform::BitmapContext> LinuxDesktop::makeBitmapContext(int width, int height) {
  return CairoBitmapContext::create(width, height);
}

std::optional<platform::Image> LinuxDesktop::generateQRCode(std::string_view message,
                                                            platform::QRCorrectionLevel level) {
  return makeQRCode(message, level);
}

}  // namespace lumiscan::desktop

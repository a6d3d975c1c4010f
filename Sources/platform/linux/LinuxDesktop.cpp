#include "platform/linux/LinuxDesktop.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <cassert>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>

#include "platform/Appearance.h"
#include "platform/Date.h"
#include "platform/NotificationCenter.h"
#include "platform/linux/Alert.h"
#include "platform/linux/Appearance.h"
#include "platform/linux/Application.h"
#include "platform/linux/Dispatch.h"
#include "platform/linux/Logger.h"
#include "platform/linux/LoginItem.h"
#include "platform/linux/LoginSession.h"
#include "platform/linux/ManagedWindow.h"
#include "platform/linux/OverlayPeer.h"
#include "platform/linux/OverlaySession.h"
#include "platform/linux/PanelPeer.h"
#include "platform/linux/PanelStage.h"
#include "platform/linux/Pasteboard.h"
#include "platform/linux/SessionBus.h"
#include "platform/linux/Sound.h"
#include "platform/linux/SpeechSynthesizer.h"
#include "platform/linux/StandingThreads.h"
#include "platform/linux/StatusBar.h"
#include "platform/linux/ToolkitConnection.h"
#include "platform/linux/Typesetter.h"
#include "platform/linux/UserDefaults.h"
#include "platform/linux/Workspace.h"
#include "platform/linux/drawing/BitmapContext.h"
#include "platform/linux/drawing/QRCode.h"
#include "platform/linux/form/FieldWidget.h"
#include "platform/linux/recognition/BarcodeDetector.h"
#include "platform/linux/recognition/FreeMemory.h"
#include "platform/linux/recognition/TextRecognizer.h"
#include "platform/linux/x11/Display.h"
#include "platform/linux/x11/HotKeys.h"
#include "platform/linux/x11/InstanceClaim.h"
#include "platform/linux/x11/Struts.h"

namespace lumiscan::desktop {

namespace {

/// How long the end of the program waits for tasks that still run.
constexpr std::chrono::milliseconds tasksPatience(500);
// After the recogniser's last use.
constexpr std::chrono::seconds recognizerSettles(20);
constexpr std::chrono::seconds recognizerKept(600);
/// For tasks, drawing, sound, speech and the toolkit's connections, and some more.
constexpr int threadsAtStart = 12;

/// A rectangle on one screen, from the toolkit's coordinates, in which a screen's origin is in pixels and
/// everything from there on in points, to pixels.
platform::Rect inPixels(const QRect& rect, const QScreen& screen) {
  const QPoint origin = screen.geometry().topLeft();
  const double scale = screen.devicePixelRatio();
  return {{origin.x() + (rect.x() - origin.x()) * scale, origin.y() + (rect.y() - origin.y()) * scale},
          {rect.width() * scale, rect.height() * scale}};
}

/// Tells `displays` what the toolkit and the desktop's bars say of the screens, now and at each change, and
/// `overlays` that they changed, as long as `context` lives.
void followToolkitScreens(x11::X11Displays& displays, OverlaySession& overlays, x11::Struts& struts,
                          QObject& context) {
  const auto tell = [&displays, &overlays, &struts] {
    std::map<std::string, x11::X11Displays::ToolkitScreen> screens;
    for (const QScreen* screen : QGuiApplication::screens())
      screens[screen->name().toStdString()] = {
          screen->devicePixelRatio(), intersection(inPixels(screen->availableGeometry(), *screen),
                                                   struts.workArea(inPixels(screen->geometry(), *screen)))};
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
  struts.changed = tell;
  for (QScreen* screen : QGuiApplication::screens()) follow(screen);
}

}  // namespace

/// What needs the application object, made with it.
struct Interactive {
  Interactive(PanelFreeDisplays& allDisplays, platform::NotificationCenter& workspace)
      : loginSession(workspace),
        hotKeys(toolkitConnection(), FieldWidget::windowWithFocus),
        displays(allDisplays),
        panels(toolkitConnection(), displays),
        overlays(toolkitConnection(), displays, panels) {
    QObject::connect(&sessionBus, &SessionBus::changed, &colorScheme,
                     [this] { colorScheme.useBus(sessionBus.connection()); });
    panels.beforeShowing = [this] { overlays.freezeAll(); };
    displays.setStage(&panels);
    followToolkitScreens(displays, overlays, struts, screenFollower);
  }
  ~Interactive() { displays.setStage(nullptr); }
  Interactive(const Interactive&) = delete;
  Interactive& operator=(const Interactive&) = delete;

  QtApplication application;
  LoginSession loginSession;
  QtCursorStack cursors;
  X11Pasteboard pasteboard;
  x11::X11HotKeys hotKeys;
  CanberraSounds sounds;
  QtTypesetter typesetter;
  SessionBus sessionBus;
  ColorScheme colorScheme{sessionBus.connection()};
  TrayStatusBar statusBar{sessionBus, colorScheme};
  QtAlerts alerts{colorScheme};
  PanelFreeDisplays& displays;
  PanelStage panels;
  OverlaySession overlays;
  x11::Struts struts{toolkitConnection()};
  QObject screenFollower;
  QTimer recognizerSettles, recognizerGoes;  ///< Since the recogniser's last use.
};

struct LinuxDesktop::Parts {
  JournalLog log;
  QtDispatcher dispatcher;
  FileUserDefaults userDefaults{FileUserDefaults::defaultFile()};
  platform::NotificationCenter notificationCenter;
  platform::NotificationCenter workspaceNotificationCenter;
  PanelFreeDisplays displays;
  AutostartEntry loginItem = AutostartEntry::ofThisProgram();
  XdgWorkspace workspace;
  TesseractRecognizer textRecognizer{{
      .runInBackground =
          [this](std::function<void()> work) {
            dispatcher.detach(platform::TaskPriority::userInitiated, std::move(work));
          },
      .logError = [](const std::string& line) { platform::Logger("recognition").error(line); },
  }};
  ZXingDetector barcodeDetector;
  SpeechDispatcherSynthesizer speechSynthesizer;
  std::unique_ptr<x11::InstanceClaim> instanceClaim;
  std::unique_ptr<Interactive> interactive;

  /// Gives the recogniser's memory back once nobody has used it for long. Any thread. A command-line mode,
  /// which has no event loop, ends before that.
  void recognizerUsed() {
    if (!interactive) return;
    dispatcher.async([this] {
      interactive->recognizerSettles.start();
      interactive->recognizerGoes.start();
    });
  }

  void giveRecognizerBackWhenUnused() {
    const auto onceUnusedFor = [this](QTimer& timer, std::chrono::seconds time, std::function<void()> work) {
      timer.setSingleShot(true);
      timer.setInterval(time);
      QObject::connect(&timer, &QTimer::timeout, &timer, [this, work = std::move(work)] {
        dispatcher.detach(platform::TaskPriority::utility, work);
      });
    };
    onceUnusedFor(interactive->recognizerSettles, recognizerSettles, [this] { textRecognizer.settle(); });
    onceUnusedFor(interactive->recognizerGoes, recognizerKept, [this] {
      textRecognizer.releaseUnused(std::chrono::duration<double>(recognizerKept).count() / 2);
    });
  }

  Interactive& needInteractive() {
    assert(dispatcher.isMainThread());
    if (!interactive) {
      interactive = std::make_unique<Interactive>(displays, workspaceNotificationCenter);
      dispatcher.startTaskThreads();
      giveRecognizerBackWhenUnused();
    }
    return *interactive;
  }
};

LinuxDesktop::LinuxDesktop() : parts_(std::make_unique<Parts>()) {
  keepFreeMemoryTogether();
  Desktop::install(this);
}

LinuxDesktop::~LinuxDesktop() {
  dropSingletons();
  if (parts_->interactive) {
    // A new instance may start while this one hands its clipboard over.
    parts_->interactive->hotKeys.leave();
    parts_->instanceClaim = nullptr;
    parts_->interactive->pasteboard.leave();
  }
  // A recognition can't be broken off. Nothing waits for its result any more and everything is saved, so
  // the process ends around it.
  parts_->dispatcher.dropWaitingTasks();
  if (!parts_->dispatcher.waitForTasks(tasksPatience)) std::_Exit(EXIT_SUCCESS);
  parts_.reset();
  Desktop::install(nullptr);
}

std::optional<std::string> LinuxDesktop::interactiveModeProblem() {
  if (!threadsCanStart(threadsAtStart))
    return "no thread can be started: processes or memory are limited too much";
  if (parts_->displays.preflightScreenCaptureAccess()) return std::nullopt;
  const char* name = std::getenv("DISPLAY");
  if (!name || !*name) return "no X display: DISPLAY is not set";
  return std::string("no X display answers at DISPLAY=") + name;
}

bool LinuxDesktop::claimInstance() {
  parts_->instanceClaim = x11::InstanceClaim::make();
  return parts_->instanceClaim != nullptr;
}

platform::Application& LinuxDesktop::application() { return parts_->needInteractive().application; }
platform::Dispatcher& LinuxDesktop::dispatcher() { return parts_->dispatcher; }
platform::Date LinuxDesktop::currentDate() {
  const std::chrono::duration<double> since1970 = std::chrono::system_clock::now().time_since_epoch();
  return {since1970.count() - platform::Date::referenceDateSince1970};
}
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
platform::Sounds& LinuxDesktop::sounds() { return parts_->needInteractive().sounds; }
platform::SpeechSynthesizer& LinuxDesktop::speechSynthesizer() { return parts_->speechSynthesizer; }
platform::HotKeys& LinuxDesktop::hotKeys() { return parts_->needInteractive().hotKeys; }
platform::LoginItem& LinuxDesktop::loginItem() { return parts_->loginItem; }
platform::Workspace& LinuxDesktop::workspace() { return parts_->workspace; }
platform::TextRecognizer& LinuxDesktop::textRecognizer() {
  parts_->recognizerUsed();
  return parts_->textRecognizer;
}
platform::BarcodeDetector& LinuxDesktop::barcodeDetector() { return parts_->barcodeDetector; }

platform::StatusBar& LinuxDesktop::statusBar() { return parts_->needInteractive().statusBar; }
platform::Alerts& LinuxDesktop::alerts() { return parts_->needInteractive().alerts; }

platform::Appearance LinuxDesktop::appearance() {
  return {parts_->needInteractive().colorScheme.isDark(), PanelWindow::blursBehind(toolkitConnection())};
}
platform::Typesetter& LinuxDesktop::typesetter() { return parts_->needInteractive().typesetter; }

std::unique_ptr<platform::WindowPeer> LinuxDesktop::makeWindowPeer(platform::Window& window) {
  if (window.attributes().styleMask & platform::windowStyleNonactivatingPanel)
    return std::make_unique<PanelPeer>(window, parts_->needInteractive().panels);
  if (window.attributes().styleMask & platform::windowStyleTitled)
    return std::make_unique<ManagedWindow>(window, parts_->needInteractive().colorScheme);
  return std::make_unique<OverlayPeer>(window, parts_->needInteractive().overlays);
}

std::unique_ptr<platform::BitmapContext> LinuxDesktop::makeBitmapContext(int width, int height) {
  return CairoBitmapContext::create(width, height);
}

std::optional<platform::Image> LinuxDesktop::generateQRCode(std::string_view message,
                                                            platform::QRCorrectionLevel level) {
  return makeQRCode(message, level);
}

}  // namespace lumiscan::desktop

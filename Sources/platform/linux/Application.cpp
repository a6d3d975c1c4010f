#include "platform/linux/Application.h"

#include <sys/socket.h>
#include <unistd.h>

#include <QPixmapCache>
#include <QThread>
#include <QThreadPool>
#include <csignal>
#include <cstdlib>

#include "platform/Logger.h"
#include "platform/linux/SessionBus.h"
#include "platform/linux/StandingThreads.h"
#include "platform/linux/ToolkitConnection.h"

namespace lumiscan::desktop {

namespace {

/// The end on which the signal handler writes: nothing but a write is safe there.
int signalWriteEnd = -1;

void signalCame(int) {
  const char byte = 0;
  [[maybe_unused]] const auto written = write(signalWriteEnd, &byte, 1);
}

bool eventLoopRuns = false;

/// The toolkit draws what is large on threads of its global pool, and waits for them. One is enough: waking
/// several costs more than they save.
void startDrawingThread() {
  QThreadPool::globalInstance()->setMaxThreadCount(1);
  startAllThreads(*QThreadPool::globalInstance());
}

/// The toolkit leaves by `exit` when the X server has gone. Destructors, also of libraries that were loaded
/// meanwhile, would then run under threads that are at work, and wait for answers that can't come.
void endAtOnceFromWithinEventLoop() {
  if (!eventLoopRuns) return;
  platform::Logger("application").error("the connection to the X display is lost");
  std::_Exit(EXIT_FAILURE);
}

QtMessageHandler toolkitMessageHandler = nullptr;

/// The toolkit says that the connection is broken right before it leaves: the one moment at which no
/// destructor has run yet.
void endWithTheConnection(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  toolkitMessageHandler(type, context, message);
  if (eventLoopRuns && QThread::currentThread() == qApp->thread() &&
      xcb_connection_has_error(toolkitConnection()))
    endAtOnceFromWithinEventLoop();
}

/// The toolkit keeps what it has painted of buttons, boxes and icons by the palette or picture that they were
/// painted with. Each window here brings its own, so pictures of windows that are gone are never found again,
/// and the toolkit never frees the names of those that make room for others.
void keepNoPaintedPictures() { QPixmapCache::setCacheLimit(0); }

/// What must be settled before the toolkit looks around. Its choice of a window system is ours: the desktop
/// behind this layer is X11's, also where a Wayland session offers it beside its own.
int& prepared(int& argumentCount) {
  qputenv("QT_QPA_PLATFORM", "xcb");
  avoidHangingSessionBus();
  return argumentCount;
}

}  // namespace

QtApplication::QtApplication() : application_(prepared(argumentCount_), arguments_) {
  QApplication::setApplicationName("Lumiscan");
  QGuiApplication::setDesktopFileName(platform::applicationID);
  QApplication::setQuitOnLastWindowClosed(false);
  startDrawingThread();
  keepNoPaintedPictures();
  catchSignals();
  if (!toolkitMessageHandler) toolkitMessageHandler = qInstallMessageHandler(endWithTheConnection);
  // For what ends without a message. After the toolkit's own, so that it runs before them; once a process.
  [[maybe_unused]] static const int registered = std::atexit(endAtOnceFromWithinEventLoop);
}

QtApplication::~QtApplication() {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) std::signal(signal, SIG_DFL);
}

void QtApplication::catchSignals() {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) != 0) return;
  signalWriteEnd = ends[0];
  signalNotifier_ = std::make_unique<QSocketNotifier>(ends[1], QSocketNotifier::Read);
  QObject::connect(signalNotifier_.get(), &QSocketNotifier::activated, &application_,
                   [this] { terminate(); });
  struct sigaction action {};
  action.sa_handler = signalCame;
  action.sa_flags = SA_RESTART;
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) sigaction(signal, &action, nullptr);
  // A file's size that is limited and a reader of the log that has gone are errors of a write, not the end.
  for (const int signal : {SIGXFSZ, SIGPIPE}) std::signal(signal, SIG_IGN);
}

void QtApplication::setActivationPolicy(platform::ActivationPolicy) {
  // What an accessory must not show, a taskbar entry and a place in the window switcher, is a matter of
  // each window here.
}

void QtApplication::run() {
  QMetaObject::invokeMethod(
      &application_,
      [this] {
        if (delegate_) delegate_->applicationDidFinishLaunching();
      },
      Qt::QueuedConnection);
  eventLoopRuns = true;
  QApplication::exec();
  eventLoopRuns = false;
}

void QtApplication::terminate() { QApplication::quit(); }

void QtApplication::activateIgnoringOtherApps() {
  // A program comes to the front with its windows here: each takes the focus when it is made key.
}

void QtApplication::disableSuddenTermination() {
  // Nothing on this desktop ends a program silently.
}

Qt::CursorShape qtCursorShape(platform::CursorShape shape) {
  return shape == platform::CursorShape::crosshair ? Qt::CrossCursor : Qt::ArrowCursor;
}

void QtCursorStack::push(platform::CursorShape shape) {
  QGuiApplication::setOverrideCursor(qtCursorShape(shape));
}

void QtCursorStack::pop() { QGuiApplication::restoreOverrideCursor(); }

}  // namespace lumiscan::desktop

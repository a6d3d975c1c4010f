#include "platform/linux/OverlaySession.h"

#include <QCoreApplication>
#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/Logger.h"
#include "platform/linux/CallOnThread.h"
#include "platform/linux/OverlayPeer.h"
#include "platform/linux/PanelStage.h"

namespace lumiscan::desktop {

namespace {

/// How long the windows beneath the overlays may take to paint themselves again.
constexpr std::chrono::milliseconds repaintTime(300);
/// How long another program may go on holding the mouse or the keyboard: a click or a closing menu is soon
/// over.
constexpr std::chrono::milliseconds betweenGrabAttempts(20);
constexpr int mostGrabAttempts = 25;
/// How long the main thread may be busy before a picture is given up.
constexpr std::chrono::milliseconds concealPatience(400);

}  // namespace

OverlaySession::OverlaySession(xcb_connection_t* connection, x11::X11Displays& displays, PanelStage& panels)
    : connection_(connection), displays_(displays), panels_(panels), grab_(connection), cursors_(connection) {
  grabRetry_.setSingleShot(true);
  QObject::connect(&grabRetry_, &QTimer::timeout, &context_, [this] { takeInput(); });
  QCoreApplication::instance()->installNativeEventFilter(this);
  displays_.setConcealer(this);
}

OverlaySession::~OverlaySession() {
  displays_.setConcealer(nullptr);
  if (auto* application = QCoreApplication::instance()) application->removeNativeEventFilter(this);
}

x11::OverlayGround OverlaySession::overlayOpens(OverlayPeer& overlay, platform::DisplayID display) {
  // What an overlay freezes, or shows through itself, is the desktop without them.
  if (overlays_.empty()) panels_.conceal();
  overlays_.push_back(&overlay);
  ++generation_;
  return displays_.overlayOpens(display);
}

void OverlaySession::overlayCloses(OverlayPeer& overlay) {
  std::erase(overlays_, &overlay);
  if (pressedOverlay_ == &overlay) pressedOverlay_ = nullptr;
  if (keyOverlay_ == &overlay) keyOverlay_ = nullptr;
  if (!overlays_.empty()) return;
  grabRetry_.stop();
  grab_.release();
  displays_.overlaysClosed();
  QTimer::singleShot(repaintTime, &context_, [this, closed = generation_] {
    if (closed == generation_) displays_.thaw();
  });
}

void OverlaySession::freezeWithin(const QRect& pixels) {
  for (OverlayPeer* const overlay : overlays_)
    if (overlay->pixels().intersects(pixels)) overlay->freeze();
}

void OverlaySession::freezeAll() {
  for (OverlayPeer* const overlay : overlays_) overlay->freeze();
}

void OverlaySession::makeKey(OverlayPeer& overlay) {
  keyOverlay_ = &overlay;
  grabAttempts_ = 0;
  takeInput();
}

void OverlaySession::takeInput() {
  if (!keyOverlay_ || grab_.take(keyOverlay_->windowID())) return;
  if (++grabAttempts_ < mostGrabAttempts) {
    grabRetry_.start(betweenGrabAttempts);
    return;
  }
  platform::Logger("overlay").error("another program holds the mouse or the keyboard");
  keyOverlay_->cancel();
}

void OverlaySession::screensChanged() {
  displays_.screensChanged();
  for (OverlayPeer* const overlay : overlays_) {
    if (overlay->coversItsScreen()) continue;
    // The end of a session closes all overlays.
    overlay->cancel();
    return;
  }
}

OverlayPeer* OverlaySession::overlayOf(xcb_window_t window) const {
  const auto found = std::find_if(overlays_.begin(), overlays_.end(),
                                  [window](const OverlayPeer* each) { return each->windowID() == window; });
  return found == overlays_.end() ? nullptr : *found;
}

bool OverlaySession::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
  if (overlays_.empty() || eventType != "xcb_generic_event_t") return false;
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  switch (event->response_type & 0x7F) {
    case XCB_EXPOSE: {
      const auto& expose = *reinterpret_cast<const xcb_expose_event_t*>(event);
      if (OverlayPeer* const overlay = overlayOf(expose.window))
        overlay->exposed(QRect(expose.x, expose.y, expose.width, expose.height));
      break;
    }
    case XCB_MOTION_NOTIFY:
      mouseMoved(*reinterpret_cast<const xcb_motion_notify_event_t*>(event));
      break;
    case XCB_BUTTON_PRESS:
      buttonChanged(*reinterpret_cast<const xcb_button_press_event_t*>(event), true);
      break;
    case XCB_BUTTON_RELEASE:
      buttonChanged(*reinterpret_cast<const xcb_button_press_event_t*>(event), false);
      break;
    case XCB_KEY_PRESS: {
      const auto& key = *reinterpret_cast<const xcb_key_press_event_t*>(event);
      if (OverlayPeer* const overlay = overlayOf(key.event)) overlay->keyPressed(key);
      break;
    }
    default:
      break;
  }
  return false;
}

void OverlaySession::mouseMoved(const xcb_motion_notify_event_t& event) {
  const QPoint root(event.root_x, event.root_y);
  // A drag stays with the overlay on which it began.
  if (pressedOverlay_)
    pressedOverlay_->mouseEvent(platform::Window::MousePhase::dragged, root);
  else if (OverlayPeer* const overlay = overlayOf(event.event))
    overlay->mouseEvent(platform::Window::MousePhase::moved, root);
}

void OverlaySession::buttonChanged(const xcb_button_press_event_t& event, bool pressed) {
  if (event.detail != XCB_BUTTON_INDEX_1) return;
  const QPoint root(event.root_x, event.root_y);
  if (pressed) {
    pressedOverlay_ = overlayOf(event.event);
    if (pressedOverlay_) pressedOverlay_->mouseEvent(platform::Window::MousePhase::down, root);
  } else if (pressedOverlay_) {
    OverlayPeer* const overlay = std::exchange(pressedOverlay_, nullptr);
    overlay->mouseEvent(platform::Window::MousePhase::up, root);
  }
}

bool OverlaySession::conceal() {
  const auto concealed = callOnThread(
      context_,
      [this] {
        setConcealed(true);
        return true;
      },
      concealPatience);
  return concealed.has_value();
}

void OverlaySession::reveal() {
  QMetaObject::invokeMethod(
      &context_, [this] { setConcealed(false); }, Qt::AutoConnection);
}

void OverlaySession::setConcealed(bool concealed) {
  // Several pictures may be taken at a time.
  concealments_ += concealed ? 1 : -1;
  for (OverlayPeer* const overlay : overlays_) overlay->setConcealed(concealments_ > 0);
}

}  // namespace lumiscan::desktop

#include "platform/linux/OverlayPeer.h"

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/Dispatch.h"
#include "platform/linux/Graphics.h"
#include "platform/linux/InkContext.h"
#include "platform/linux/OverlaySession.h"
#include "platform/linux/x11/KeyCodes.h"
#include "platform/linux/x11/ModifierMap.h"

namespace lumiscan::desktop {

namespace {

/// Between two paintings: a mouse may move more often than any screen shows something new.
constexpr std::chrono::milliseconds shortestFrame(7);
/// How long after an overlay has opened the pixels of the desktop behind it are fetched.
constexpr std::chrono::milliseconds beforeFetching(60);
constexpr std::uint32_t wantedEvents = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS |
                                       XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION |
                                       XCB_EVENT_MASK_KEY_PRESS;

platform::CursorShape cursorOf(const platform::Window& window) {
  const platform::View* const view = window.contentView();
  return view && !view->cursorRects().empty() ? view->cursorRects().front().cursor
                                              : platform::CursorShape::arrow;
}

/// A picture to paint on that begins as `ground`, or transparent without one.
QImage canvas(QSize size, const std::optional<platform::Image>& ground) {
  QImage image(size, ground ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
  if (ground) {
    for (int y = 0; y < size.height(); ++y)
      std::memcpy(image.scanLine(y), ground->row(y), static_cast<std::size_t>(image.bytesPerLine()));
  } else {
    image.fill(Qt::transparent);
  }
  return image;
}

}  // namespace

OverlayPeer::OverlayPeer(platform::Window& window, OverlaySession& session)
    : window_(window), session_(session) {
  paintTimer_.setSingleShot(true);
  paintTimer_.setTimerType(Qt::PreciseTimer);
  fetchTimer_.setSingleShot(true);
  QObject::connect(&fetchTimer_, &QTimer::timeout, [this] { fetchBehind(); });
  QObject::connect(&paintTimer_, &QTimer::timeout, [this] { paint(); });
}

OverlayPeer::~OverlayPeer() { OverlayPeer::orderOut(); }

void OverlayPeer::orderFront() {
  if (!native_) open();
  if (native_) native_->showOnTop();
}

void OverlayPeer::open() {
  const auto place = session_.displays().layout().place(window_.frame());
  if (!place) {
    // Its screen has gone between being asked for and being covered.
    QMetaObject::invokeMethod(
        &context_, [this] { cancel(); }, Qt::QueuedConnection);
    return;
  }
  place_ = *place;
  ground_ = session_.overlayOpens(*this, place_.display);
  const bool composited = ground_.mark.has_value();
  native_ = std::make_unique<x11::UnmanagedWindow>(
      session_.connection(), x11::UnmanagedWindow::Options{
                                 .pixels = qRect(place_.pixels),
                                 .wantsAlpha = composited,
                                 .events = wantedEvents,
                                 .cursor = session_.cursor(cursorOf(window_)),
                                 .instanceName = "lumiscan",
                                 .className = "Lumiscan",
                                 // Compositors give these no shadow and no animation.
                                 .types = {"_KDE_NET_WM_WINDOW_TYPE_OVERRIDE", "_NET_WM_WINDOW_TYPE_DND"},
                             });
  if (ground_.frozenDesktop) useFrozenDesktop();
  exposed(allPixels());
  // The server is busy with showing the overlays now, and the user needs longer for a drag than this takes.
  fetchTimer_.start(beforeFetching);
}

void OverlayPeer::freeze() {
  if (!ground_.isToBeFrozen) return;
  ground_.isToBeFrozen = false;
  ground_.frozenDesktop = session_.freeze(place_.display);
  if (ground_.frozenDesktop) useFrozenDesktop();
}

void OverlayPeer::useFrozenDesktop() {
  if (!place_.coversDisplay) return;
  native_->setBackground(ground_.frozenDesktop->pixmap());
}

void OverlayPeer::fetchBehind() {
  freeze();
  if (!ground_.frozenDesktop) return;
  platform::Task::detached(platform::TaskPriority::userInteractive,
                           [desktop = ground_.frozenDesktop] { desktop->image(); });
}

void OverlayPeer::orderOut() {
  if (!native_) return;
  freeze();
  // A compositor that lets windows fade away then has nothing to show.
  if (native_->isTransparent()) eraseAll();
  native_ = nullptr;
  fetchTimer_.stop();
  dirty_ = painted_ = {};
  session_.overlayCloses(*this);
  ground_ = {};
}

void OverlayPeer::makeKey() {
  if (native_) session_.makeKey(*this);
}

bool OverlayPeer::isKey() const { return native_ && session_.isKey(*this); }

void OverlayPeer::cancel() {
  if (const auto window = window_.weak_from_this().lock()) window->sendCancel();
}

bool OverlayPeer::coversItsScreen() const {
  return session_.displays().layout().place(window_.frame()) == place_;
}

void OverlayPeer::mouseEvent(platform::Window::MousePhase phase, QPoint root) {
  const auto window = window_.weak_from_this().lock();
  if (!window || !native_) return;
  const QPoint pixel = root - native_->pixels().topLeft();
  platform::Point position{double(pixel.x()), double(pixel.y())};
  if (phase == platform::Window::MousePhase::moved) {
    const platform::Point inPixel = x11::mouseInPixel(place_.scale);
    position = {position.x + inPixel.x, position.y + inPixel.y};
  } else {
    // The corners of a rectangle are corners of pixels. The mouse can't go beyond the last pixels of the
    // screen, which a rectangle must be able to hold all the same.
    if (pixel.x() == allPixels().right()) ++position.x;
    if (pixel.y() == allPixels().bottom()) ++position.y;
  }
  window->sendMouseEvent(
      phase, {{position.x / place_.scale, window_.frame().size.height - position.y / place_.scale}});
}

void OverlayPeer::keyPressed(const xcb_key_press_event_t& event) {
  const auto key = x11::isEscape(session_.connection(), event.detail) ? platform::keyCodeEscape
                                                                      : x11::virtualKeyCode(event.detail);
  const auto modifiers = x11::ModifierMap::read(session_.connection()).flags(event.state);
  if (const auto window = window_.weak_from_this().lock())
    window->sendKeyDown({key.value_or(platform::keyCodeNone), modifiers});
}

void OverlayPeer::invalidate(const platform::Rect& rect) {
  if (!native_) return;
  const double height = window_.frame().size.height;
  exposed(qRect(platform::integral({{rect.minX() * place_.scale, (height - rect.maxY()) * place_.scale},
                                    {rect.size.width * place_.scale, rect.size.height * place_.scale}})));
}

void OverlayPeer::exposed(const QRect& pixels) {
  dirty_ += pixels & allPixels();
  schedulePaint();
}

void OverlayPeer::schedulePaint() {
  if (concealed_ || paintTimer_.isActive()) return;
  const auto sinceLast = std::chrono::steady_clock::now() - lastPaint_;
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(shortestFrame - sinceLast);
  paintTimer_.start(std::max(wait, std::chrono::milliseconds(0)));
}

void OverlayPeer::paint() {
  if (!native_ || concealed_ || dirty_.isEmpty()) return;
  lastPaint_ = std::chrono::steady_clock::now();
  InkContext context(window_.frame().size.height, place_.scale);
  window_.draw(context, {{0, 0}, window_.frame().size});
  QRegion ink = context.region() & allPixels();
  if (ground_.mark) ink += QRect(ground_.mark->x, ground_.mark->y, 1, 1);
  const QRegion toPaint = (painted_ + ink) & dirty_;
  if (!toPaint.isEmpty()) session_.freezeWithin(pixels());
  for (const QRect& rect : toPaint) paint(rect);
  painted_ = (painted_ - dirty_) + (ink & dirty_);
  dirty_ = {};
  xcb_flush(session_.connection());
}

void OverlayPeer::paint(const QRect& pixels) {
  std::optional<platform::Image> ground;
  if (!native_->isTransparent() && ground_.frozenDesktop) {
    const platform::Point display = ground_.frozenDesktop->pixels().origin;
    const QPoint onScreen = native_->pixels().topLeft() + pixels.topLeft();
    ground = ground_.frozenDesktop->part({{onScreen.x() - display.x, onScreen.y() - display.y},
                                          {double(pixels.width()), double(pixels.height())}});
  }
  QImage image = canvas(pixels.size(), ground);
  const double height = window_.frame().size.height;
  {
    QPainter painter(&image);
    painter.translate(-pixels.topLeft());
    painter.scale(place_.scale, place_.scale);
    PainterContext context(painter, height);
    window_.draw(context,
                 {{pixels.x() / place_.scale, height - (pixels.y() + pixels.height()) / place_.scale},
                  {pixels.width() / place_.scale, pixels.height() / place_.scale}});
  }
  if (ground_.mark && pixels.contains(ground_.mark->x, ground_.mark->y))
    image.setPixel(QPoint(ground_.mark->x, ground_.mark->y) - pixels.topLeft(),
                   0xFF000000 | ground_.mark->color);
  native_->write(image, pixels.topLeft());
}

void OverlayPeer::eraseAll() {
  const auto erase = [this](const QRect& rect) {
    native_->write(canvas(rect.size(), std::nullopt), rect.topLeft());
  };
  // The mark goes last: once the compositor shows that it has gone, all else has.
  QRegion ink = painted_;
  if (ground_.mark) ink -= QRect(ground_.mark->x, ground_.mark->y, 1, 1);
  for (const QRect& rect : ink) erase(rect);
  if (ground_.mark) erase(QRect(ground_.mark->x, ground_.mark->y, 1, 1));
  painted_ = {};
  xcb_flush(session_.connection());
}

void OverlayPeer::setConcealed(bool concealed) {
  if (concealed_ == concealed) return;
  concealed_ = concealed;
  if (!native_) return;
  if (concealed && native_->isTransparent()) eraseAll();
  if (!concealed) exposed(allPixels());
}

}  // namespace lumiscan::desktop

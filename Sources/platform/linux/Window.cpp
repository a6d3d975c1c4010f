#include "platform/linux/Window.h"

#include <QImage>
#include <QPainter>
#include <cmath>
#include <cstring>

#include "platform/linux/Graphics.h"
#include "platform/linux/InkContext.h"
#include "platform/linux/OverlaySession.h"
#include "platform/linux/x11/KeyCodes.h"

namespace lumiscan::desktop {

namespace {

constexpr std::uint16_t noVirtualKeyCode = 0xFFFF;

platform::CursorShape cursorOf(const platform::Window& window) {
  const platform::View* const view = window.contentView();
  return view && !view->cursorRects().empty() ? view->cursorRects().front().cursor
                                              : platform::CursorShape::arrow;
}

/// A part of a picture of the screen, as a picture of its own.
QImage part(const platform::Image& picture, const QRect& pixels) {
  QImage copy(pixels.size(), QImage::Format_RGB32);
  for (int y = 0; y < pixels.height(); ++y)
    std::memcpy(copy.scanLine(y), picture.row(pixels.y() + y) + std::ptrdiff_t{4} * pixels.x(),
                std::size_t{4} * static_cast<std::size_t>(pixels.width()));
  return copy;
}

}  // namespace

OverlayPeer::OverlayPeer(platform::Window& window, OverlaySession& session)
    : window_(window), session_(session) {}

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
  std::optional<xcb_pixmap_t> pixmap;
  if (ground_.frozenDesktop && place_.coversDisplay) pixmap = ground_.frozenDesktop->pixmap->id();
  native_ =
      std::make_unique<x11::OverlayWindow>(session_.connection(), place_.pixels, pixmap, cursorOf(window_));
  exposed(QRect(QPoint(0, 0), native_->size()));
}

void OverlayPeer::orderOut() {
  if (!native_) return;
  // A compositor that lets windows fade away then has nothing to show.
  if (native_->isTransparent()) eraseAll();
  native_ = nullptr;
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
  const QPoint pixel = root - native_->origin();
  platform::Point position{double(pixel.x()), double(pixel.y())};
  if (phase == platform::Window::MousePhase::moved) {
    const platform::Point inPixel = x11::mouseInPixel(place_.scale);
    position = {position.x + inPixel.x, position.y + inPixel.y};
  } else {
    // The corners of a rectangle are corners of pixels. The mouse can't go beyond the last pixels of the
    // screen, which a rectangle must be able to hold all the same.
    if (pixel.x() == native_->size().width() - 1) ++position.x;
    if (pixel.y() == native_->size().height() - 1) ++position.y;
  }
  window->sendMouseEvent(
      phase, {{position.x / place_.scale, window_.frame().size.height - position.y / place_.scale}});
}

void OverlayPeer::keyPressed(const xcb_key_press_event_t& event) {
  const auto key = x11::virtualKeyCode(event.detail);
  if (const auto window = window_.weak_from_this().lock())
    window->sendKeyDown({key.value_or(noVirtualKeyCode), x11::modifierFlags(event.state), false});
}

void OverlayPeer::invalidate(const platform::Rect& rect) {
  if (!native_) return;
  const double height = window_.frame().size.height;
  const platform::Rect pixels =
      platform::integral({{rect.minX() * place_.scale, (height - rect.maxY()) * place_.scale},
                          {rect.size.width * place_.scale, rect.size.height * place_.scale}});
  exposed(QRect(int(pixels.minX()), int(pixels.minY()), int(pixels.size.width), int(pixels.size.height)));
}

void OverlayPeer::exposed(const QRect& pixels) {
  dirty_ += pixels & QRect(QPoint(0, 0), native_->size());
  schedulePaint();
}

void OverlayPeer::schedulePaint() {
  if (paintScheduled_ || concealed_) return;
  paintScheduled_ = true;
  QMetaObject::invokeMethod(
      &context_,
      [this] {
        paintScheduled_ = false;
        paint();
      },
      Qt::QueuedConnection);
}

void OverlayPeer::paint() {
  if (!native_ || concealed_ || dirty_.isEmpty()) return;
  InkContext context(window_.frame().size.height, place_.scale);
  window_.draw(context, {{0, 0}, window_.frame().size});
  QRegion ink = context.region() & QRect(QPoint(0, 0), native_->size());
  if (ground_.mark) ink += QRect(ground_.mark->x, ground_.mark->y, 1, 1);
  for (const QRect& rect : (painted_ + ink) & dirty_) paint(rect);
  painted_ = (painted_ - dirty_) + (ink & dirty_);
  dirty_ = {};
  xcb_flush(session_.connection());
}

void OverlayPeer::paint(const QRect& pixels) {
  QImage image;
  if (!native_->isTransparent() && ground_.frozenDesktop) {
    image = part(ground_.frozenDesktop->image, pixels);
  } else {
    image = QImage(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
  }
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
  for (const QRect& rect : painted_) {
    QImage nothing(rect.size(), QImage::Format_ARGB32_Premultiplied);
    nothing.fill(Qt::transparent);
    native_->write(nothing, rect.topLeft());
  }
  painted_ = {};
  xcb_flush(session_.connection());
}

void OverlayPeer::setConcealed(bool concealed) {
  if (concealed_ == concealed) return;
  concealed_ = concealed;
  if (!native_) return;
  if (concealed && native_->isTransparent()) eraseAll();
  if (!concealed) exposed(QRect(QPoint(0, 0), native_->size()));
}

}  // namespace lumiscan::desktop

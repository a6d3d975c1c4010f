#include "platform/linux/Window.h"

#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QRasterWindow>
#include <QScreen>
#include <QSurfaceFormat>
#include <QTimer>
#include <chrono>
#include <cmath>
#include <optional>

#include "platform/linux/Application.h"
#include "platform/linux/Graphics.h"
#include "platform/linux/x11/Focus.h"
#include "platform/linux/x11/KeyCodes.h"

namespace lumiscan::desktop {

namespace {

/// How long the windows beneath the overlays may take to paint themselves again.
constexpr std::chrono::milliseconds repaintTime(300);
constexpr std::uint16_t noVirtualKeyCode = 0xFFFF;

QImage imageSharing(const platform::Image& image, double scale) {
  // The image object rides along as the owner of the pixels.
  auto* owner = new platform::Image(image);
  QImage shared(
      reinterpret_cast<const uchar*>(image.row(0)), image.width(), image.height(), image.bytesPerRow(),
      image.format() == platform::PixelFormat::xrgb ? QImage::Format_RGB32
                                                    : QImage::Format_ARGB32_Premultiplied,
      [](void* kept) { delete static_cast<platform::Image*>(kept); }, owner);
  shared.setDevicePixelRatio(scale);
  return shared;
}

QScreen* qtScreen(platform::DisplayID display) {
  for (QScreen* screen : QGuiApplication::screens())
    if (x11::ScreenLayout::displayID(screen->name().toStdString()) == display) return screen;
  return QGuiApplication::primaryScreen();
}

}  // namespace

platform::DisplayID OverlaySession::displayAt(const platform::Rect& frame) const {
  return displays_.layout().displayAt(frame);
}

x11::X11Displays::OverlayGround OverlaySession::overlayOpens(platform::DisplayID display) {
  ++openOverlays_;
  ++generation_;
  return displays_.overlayOpens(display);
}

void OverlaySession::overlayTakesFocus(xcb_window_t window) { focus_.take(window); }

void OverlaySession::overlayClosed() {
  if (--openOverlays_ > 0) return;
  displays_.overlaysClosed();
  focus_.giveBack();
  QTimer::singleShot(repaintTime, &context_, [this, closed = generation_] {
    if (closed == generation_) displays_.thaw();
  });
}

/// The native window: hands its events to the program's window and paints what that draws.
class OverlayPeer::OverlayWindow : public QRasterWindow {
 public:
  OverlayWindow(platform::Window& window, platform::DisplayID display,
                const x11::X11Displays::OverlayGround& ground)
      : window_(window.weak_from_this()), height_(window.frame().size.height), mark_(ground.mark) {
    QScreen* const screen = qtScreen(display);
    setScreen(screen);
    setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::BypassWindowManagerHint);
    if (ground.frozenDesktop) {
      frozen_ = imageSharing(*ground.frozenDesktop, screen->devicePixelRatio());
    } else {
      QSurfaceFormat format;
      format.setAlphaBufferSize(8);
      setFormat(format);
    }
    const platform::Size size = window.frame().size;
    setGeometry(
        {screen->geometry().topLeft(), QSize(int(std::ceil(size.width)), int(std::ceil(size.height)))});
    if (const platform::View* view = window.contentView(); view && !view->cursorRects().empty())
      setCursor(qtCursorShape(view->cursorRects().front().cursor));
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QPainter painter(this);
    painter.setClipRegion(event->region());
    if (!frozen_.isNull()) {
      painter.drawImage(QPointF(0, 0), frozen_);
    } else {
      painter.setCompositionMode(QPainter::CompositionMode_Clear);
      painter.fillRect(event->region().boundingRect(), Qt::transparent);
      painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    }
    const auto window = window_.lock();
    if (!window) return;
    PainterContext context(painter, height_);
    const QRect dirty = event->region().boundingRect();
    window->draw(context, {{double(dirty.x()), height_ - dirty.bottom() - 1},
                           {double(dirty.width()), double(dirty.height())}});
    paintMark(painter);
  }

  void mousePressEvent(QMouseEvent* event) override {
    if (event->button() == Qt::LeftButton) send(platform::Window::MousePhase::down, event);
  }
  void mouseReleaseEvent(QMouseEvent* event) override {
    if (event->button() == Qt::LeftButton) send(platform::Window::MousePhase::up, event);
  }
  void mouseMoveEvent(QMouseEvent* event) override {
    send(event->buttons() & Qt::LeftButton ? platform::Window::MousePhase::dragged
                                           : platform::Window::MousePhase::moved,
         event);
  }

  void keyPressEvent(QKeyEvent* event) override {
    const auto key = x11::virtualKeyCode(static_cast<xcb_keycode_t>(event->nativeScanCode()));
    const auto flags = x11::modifierFlags(static_cast<std::uint16_t>(event->nativeModifiers()));
    if (const auto window = window_.lock())
      window->sendKeyDown({key.value_or(noVirtualKeyCode), flags, event->isAutoRepeat()});
  }

 private:
  void paintMark(QPainter& painter) const {
    if (!mark_) return;
    const double pixel = 1 / devicePixelRatio();
    painter.setTransform(QTransform::fromScale(pixel, pixel));
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(QRect(mark_->x, mark_->y, 1, 1), QColor::fromRgb(mark_->color));
  }

  void send(platform::Window::MousePhase phase, const QMouseEvent* event) {
    const QPointF position = event->position();
    if (const auto window = window_.lock())
      window->sendMouseEvent(phase, {{position.x(), height_ - position.y()}});
  }

  std::weak_ptr<platform::Window> window_;
  double height_;
  QImage frozen_;
  std::optional<x11::X11Displays::Mark> mark_;
};

OverlayPeer::OverlayPeer(platform::Window& window, OverlaySession& session)
    : window_(window), session_(session) {}

OverlayPeer::~OverlayPeer() { OverlayPeer::orderOut(); }

void OverlayPeer::orderFront() {
  if (!open_) {
    open_ = true;
    const platform::DisplayID display = session_.displayAt(window_.frame());
    native_.reset(new OverlayWindow(window_, display, session_.overlayOpens(display)));
    native_->show();
  }
  native_->raise();
}

void OverlayPeer::orderOut() {
  if (!open_) return;
  open_ = false;
  native_->hide();
  session_.overlayClosed();
}

void OverlayPeer::makeKey() {
  if (open_) session_.overlayTakesFocus(static_cast<xcb_window_t>(native_->winId()));
}

bool OverlayPeer::isKey() const { return open_ && native_->isActive(); }

void OverlayPeer::invalidate(const platform::Rect& rect) {
  if (!open_) return;
  // In whole points, outwards.
  const platform::Rect whole = platform::integral(rect);
  const double top = std::floor(window_.frame().size.height - whole.maxY());
  native_->update(QRect(int(whole.minX()), int(top), int(whole.size.width), int(whole.size.height) + 1));
}

}  // namespace lumiscan::desktop

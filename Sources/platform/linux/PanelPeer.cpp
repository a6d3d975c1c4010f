#include "platform/linux/PanelPeer.h"

#include <QImage>
#include <QPainter>
#include <chrono>

#include "platform/Appearance.h"
#include "platform/linux/Graphics.h"
#include "platform/linux/PanelShadow.h"
#include "platform/linux/PanelStage.h"

namespace lumiscan::desktop {

namespace {

/// Between two attempts to come above another window, which may want the same.
constexpr std::chrono::milliseconds betweenRaises(100);

QImage pictureOf(platform::Window& window, QSize pixels, double scale) {
  QImage picture(pixels, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.scale(scale, scale);
  PainterContext context(painter, pixels.height() / scale);
  window.draw(context, {{0, 0}, window.frame().size});
  return picture;
}

}  // namespace

PanelPeer::PanelPeer(platform::Window& window, PanelStage& stage) : window_(window), stage_(stage) {
  fade_.setEasingCurve(QEasingCurve::InOutQuad);
  QObject::connect(&fade_, &QVariantAnimation::valueChanged, [this](const QVariant& value) {
    alpha_ = value.toDouble();
    if (native_ && !concealed_) setOpacity(alpha_);
  });
  raise_.setSingleShot(true);
  raise_.setInterval(betweenRaises);
  QObject::connect(&raise_, &QTimer::timeout, [this] {
    if (native_) raise();
  });
}

PanelPeer::~PanelPeer() { PanelPeer::orderOut(); }

void PanelPeer::orderFront() {
  if (!native_) open();
  if (native_) raise();
}

void PanelPeer::raise() {
  if (shadow_) shadow_->showOnTop();
  native_->showOnTop();
}

void PanelPeer::setOpacity(double opacity) {
  if (shadow_) shadow_->setOpacity(opacity);
  native_->setOpacity(opacity);
}

void PanelPeer::open() {
  const auto place = stage_.displays().layout().place(window_.frame());
  if (!place) return;  // Its screen has gone.
  if (stage_.beforeShowing) stage_.beforeShowing();
  const QRect rect = qRect(place->pixels);
  const QImage picture = pictureOf(window_, rect.size(), place->scale);
  native_ = std::make_unique<PanelWindow>(stage_.connection(), rect, picture, "LumiscanPanel");
  if (window_.attributes().hasShadow && native_->isTranslucent()) {
    const PanelShadow shadow = shadowOf(picture, place->scale);
    const int reach = shadow.reach;
    shadow_ = std::make_unique<PanelWindow>(stage_.connection(), rect.adjusted(-reach, -reach, reach, reach),
                                            shadow.picture, "LumiscanShadow");
  }
  if (window_.attributes().blursBehind && platform::Appearance::current().blursBehindWindows)
    native_->blurBehind();
  concealed_ = false;
  alpha_ = window_.attributes().alphaValue;
  setOpacity(alpha_);
  stage_.shows(*this);
}

void PanelPeer::orderOut() {
  fade_.stop();
  raise_.stop();
  if (!native_) return;
  native_ = nullptr;
  shadow_ = nullptr;
  stage_.hides(*this);
}

void PanelPeer::animateAlpha(double alpha, double seconds, const std::function<void()>& completion) {
  fade_.stop();
  fade_.setStartValue(alpha_);
  fade_.setEndValue(alpha);
  fade_.setDuration(static_cast<int>(seconds * 1000));
  QObject::disconnect(&fade_, &QVariantAnimation::finished, nullptr, nullptr);
  // Later, since the completion may drop this peer; as the child of the animation, not once it has gone.
  QObject::connect(
      &fade_, &QVariantAnimation::finished, &raise_,
      [this, completion] {
        if (fade_.state() == QAbstractAnimation::Stopped && native_) completion();
      },
      Qt::QueuedConnection);
  fade_.start();
}

void PanelPeer::invalidate(const platform::Rect&) {
  // A panel's content is fixed once it shows.
}

void PanelPeer::paint() { native_->paint(); }

void PanelPeer::covered() {
  if (!raise_.isActive()) raise_.start();
}

void PanelPeer::conceal() {
  concealed_ = true;
  setOpacity(0);
}

}  // namespace lumiscan::desktop

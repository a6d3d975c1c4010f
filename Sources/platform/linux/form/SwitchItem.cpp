#include "platform/linux/form/SwitchItem.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QVBoxLayout>
#include <algorithm>
#include <variant>

#include "platform/linux/form/FormPalette.h"

namespace lumiscan::desktop {

namespace {

// In points.
constexpr QSize trackSize(36, 20);
constexpr int knobInset = 3;
constexpr int textGap = 12;
/// From the track to the middle of the ring that shows the focus, and to its outer edge.
constexpr int ringGap = 2;
constexpr int ringSpace = 3;

}  // namespace

QSize SwitchBox::sizeHint() const {
  const QSize text = fontMetrics().size(Qt::TextShowMnemonic, QCheckBox::text());
  return {text.width() + textGap + trackSize.width() + ringSpace,
          std::max(text.height(), trackSize.height() + 2 * ringSpace)};
}

void SwitchBox::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRect all = contentsRect();
  QRect track = QStyle::alignedRect(layoutDirection(), Qt::AlignRight | Qt::AlignVCenter, trackSize,
                                    all.adjusted(ringSpace, 0, -ringSpace, 0));
  style()->drawItemText(&painter, all, int(Qt::AlignLeading | Qt::AlignVCenter | Qt::TextShowMnemonic),
                        palette(), isEnabled(), QCheckBox::text(), QPalette::WindowText);

  const double radius = track.height() / 2.0;
  painter.setPen(Qt::NoPen);
  painter.setBrush(isChecked() ? palette().color(QPalette::Highlight) : switchOffColor(palette()));
  painter.drawRoundedRect(track, radius, radius);
  const double knob = track.height() - 2.0 * knobInset;
  const bool isKnobRight = isChecked() == (layoutDirection() == Qt::LeftToRight);
  painter.setBrush(Qt::white);
  painter.drawEllipse(QRectF(isKnobRight ? track.right() + 1 - knobInset - knob : track.left() + knobInset,
                             track.top() + knobInset, knob, knob));
  if (!hasFocus()) return;
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(focusColor(palette()), 2));
  painter.drawRoundedRect(QRectF(track).adjusted(-ringGap, -ringGap, ringGap, ringGap), radius + ringGap,
                          radius + ringGap);
}

SwitchItem::SwitchItem(const platform::Switch& toggle) {
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(&box_);
  // Only what the user does: `toggled` would tell of our own changes, too.
  connect(&box_, &QCheckBox::clicked, this, [this](bool isOn) {
    if (const auto setOn = setOn_) setOn(isOn);
  });
  show(toggle);
}

bool SwitchItem::update(const platform::Section::Item& item) {
  const auto* toggle = std::get_if<platform::Switch>(&item);
  if (toggle) show(*toggle);
  return toggle;
}

void SwitchItem::show(const platform::Switch& toggle) {
  box_.setText(controlText(toggle.label));
  box_.setChecked(toggle.isOn);
  box_.setAccessibleName(QString::fromStdString(toggle.label));
  box_.setAccessibleDescription(QString::fromStdString(toggle.help));
  box_.setToolTip(QString::fromStdString(toggle.help));
  setOn_ = toggle.setOn;
}

}  // namespace lumiscan::desktop

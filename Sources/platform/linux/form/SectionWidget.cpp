#include "platform/linux/form/SectionWidget.h"

#include <QPainter>
#include <cmath>
#include <utility>

#include "platform/linux/form/FormPalette.h"

namespace lumiscan::desktop {

namespace {

constexpr int headerGap = 6;    // Points.
constexpr double corner = 8;    // Points.
constexpr int itemMargin = 12;  // Points, at the sides of an item.
constexpr int itemPadding = 8;  // Points, above and below an item.

std::unique_ptr<FormItem> makeItem(const platform::Section::Item& item) {
  auto made = FormItem::make(item);
  made->layout()->setContentsMargins(itemMargin, itemPadding, itemMargin, itemPadding);
  return made;
}

}  // namespace

void SectionWidget::Group::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(separatorColor(palette()));
  painter.setBrush(groupColor(palette()));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), corner, corner);
  painter.setRenderHint(QPainter::Antialiasing, false);
  // Of whole pixels, or at a scale between two whole ones some would be thicker than others.
  painter.setPen(QPen(separatorColor(palette()), std::floor(devicePixelRatioF()) / devicePixelRatioF()));
  for (int i = 1; i < layout()->count(); ++i) {
    const int y = layout()->itemAt(i)->geometry().top();
    painter.drawLine(itemMargin, y, width() - itemMargin - 1, y);
  }
}

SectionWidget::SectionWidget(const platform::Section& section) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(headerGap);
  layout->addWidget(&header_);
  layout->addWidget(&group_);
  header_.setTextFormat(Qt::PlainText);
  header_.setFont(headerFont());
  header_.setContentsMargins(itemMargin, 0, itemMargin, 0);
  items_.setContentsMargins(0, 0, 0, 0);
  items_.setSpacing(0);
  update(section);
}

void SectionWidget::update(const platform::Section& section) {
  header_.setText(QString::fromStdString(section.header));
  group_.setAccessibleName(header_.text());
  for (; widgets_.size() > section.items.size(); widgets_.pop_back()) delete widgets_.back();
  for (std::size_t i = 0; i < section.items.size(); ++i)
    if (i == widgets_.size() || !widgets_[i]->update(section.items[i])) replace(i, section.items[i]);
}

void SectionWidget::replace(std::size_t place, const platform::Section::Item& item) {
  FormItem* const made = makeItem(item).release();
  items_.insertWidget(static_cast<int>(place), made);
  if (place == widgets_.size()) {
    widgets_.push_back(made);
    return;
  }
  FormItem* const old = std::exchange(widgets_[place], made);
  // Also of a window that isn't the active one now.
  const auto focused = old->focusParts().indexOf(window()->focusWidget());
  const QWidgetList parts = made->focusParts();
  made->show();
  if (focused >= 0 && focused < parts.size()) parts[focused]->setFocus(Qt::OtherFocusReason);
  delete old;
}

QWidgetList SectionWidget::focusParts() const {
  QWidgetList parts;
  for (FormItem* item : widgets_) parts << item->focusParts();
  return parts;
}

}  // namespace lumiscan::desktop

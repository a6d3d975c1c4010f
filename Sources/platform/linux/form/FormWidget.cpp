#include "platform/linux/form/FormWidget.h"

#include <QApplication>
#include <QScrollBar>

namespace lumiscan::desktop {

namespace {

constexpr int margin = 20;          // Points, around the form.
constexpr int sectionSpacing = 20;  // Points.
/// What shows, at the least, around the control with the focus: most of its neighbour.
constexpr int focusMargin = 40;

}  // namespace

FormWidget::FormWidget(const platform::Form& form) {
  auto* content = new QWidget;
  layout_ = new QVBoxLayout(content);
  // A click between the controls leaves the one that has the focus.
  content->setFocusPolicy(Qt::ClickFocus);
  layout_->setContentsMargins(margin, margin, margin, margin);
  layout_->setSpacing(sectionSpacing);
  setWidget(content);
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::NoFocus);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
    if (now && widget()->isAncestorOf(now)) ensureWidgetVisible(now, 0, focusMargin);
  });
  update(form);
}

void FormWidget::update(const platform::Form& form) {
  for (; sections_.size() > form.sections.size(); sections_.pop_back()) delete sections_.back();
  for (std::size_t i = 0; i < form.sections.size(); ++i) {
    if (i < sections_.size()) {
      sections_[i]->update(form.sections[i]);
      continue;
    }
    sections_.push_back(new SectionWidget(form.sections[i]));
    layout_->addWidget(sections_.back());
  }
  connectFocusOrder();
}

void FormWidget::connectFocusOrder() {
  // Without this, Tab would go by age.
  QWidget* previous = nullptr;
  for (const SectionWidget* section : sections_)
    for (QWidget* part : section->focusParts()) {
      if (previous) setTabOrder(previous, part);
      previous = part;
    }
}

}  // namespace lumiscan::desktop

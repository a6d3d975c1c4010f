#pragma once

#include <QCheckBox>

#include "platform/linux/form/FormItem.h"

namespace lumiscan::desktop {

/// A check box that looks like a switch: its label at the leading edge, the switch at the trailing one. All
/// of it can be clicked.
class SwitchBox : public QCheckBox {
 public:
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  bool hitButton(const QPoint& position) const override { return rect().contains(position); }
  void paintEvent(QPaintEvent* event) override;
};

class SwitchItem : public FormItem {
 public:
  explicit SwitchItem(const platform::Switch& toggle);
  bool update(const platform::Section::Item& item) override;
  QWidgetList focusParts() override { return {&box_}; }

 private:
  void show(const platform::Switch& toggle);

  SwitchBox box_;
  std::function<void(bool)> setOn_;
};

}  // namespace lumiscan::desktop

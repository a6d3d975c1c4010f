#pragma once

#include <QPushButton>
#include <vector>

#include "platform/linux/form/FormItem.h"

namespace lumiscan::desktop {

class RowItem : public FormItem {
 public:
  explicit RowItem(const platform::Row& row);
  bool update(const platform::Section::Item& item) override;
  QWidgetList focusParts() override { return focusParts_; }

 private:
  class Button : public QPushButton {
   public:
    explicit Button(const platform::Button& button);
    void show(const platform::Button& button);
    QSize sizeHint() const override;

   private:
    std::function<void()> action_;
  };

  std::string identity_;
  std::vector<QWidget*> parts_;  ///< By the places of the row's items; null for spacers. Owned by the layout.
  QWidgetList focusParts_;
};

}  // namespace lumiscan::desktop

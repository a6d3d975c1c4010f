#pragma once

#include <QComboBox>
#include <QLabel>
#include <QWheelEvent>

#include "platform/linux/form/FormItem.h"

namespace lumiscan::desktop {

class ChoiceItem : public FormItem {
 public:
  explicit ChoiceItem(const platform::Choice& choice);
  bool update(const platform::Section::Item& item) override;
  QWidgetList focusParts() override { return {&box_}; }

 private:
  class ComboBox : public QComboBox {
   public:
    void showPopup() override;

   protected:
    /// Leaves the wheel to the form, which scrolls: nobody wants to choose by it in passing.
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
  };

  void show(const platform::Choice& choice);

  QLabel label_;
  ComboBox box_;
  std::function<void(std::size_t)> select_;
};

}  // namespace lumiscan::desktop

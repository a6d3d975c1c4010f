#pragma once

#include <QScrollArea>
#include <QVBoxLayout>
#include <vector>

#include "platform/Declarative.h"
#include "platform/linux/form/SectionWidget.h"

namespace lumiscan::desktop {

/// A described form in the desktop's own controls, which scrolls where it doesn't fit, and to whatever gets
/// the keyboard focus. Main thread only.
class FormWidget : public QScrollArea {
 public:
  explicit FormWidget(const platform::Form& form);

  /// Shows another description. What stays keeps its widgets and the focus.
  void update(const platform::Form& form);

 private:
  void connectFocusOrder();

  QVBoxLayout* layout_;
  std::vector<SectionWidget*> sections_;  ///< Owned by the layout's widget.
};

}  // namespace lumiscan::desktop

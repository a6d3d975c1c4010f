#pragma once

#include <QLabel>
#include <QVBoxLayout>
#include <vector>

#include "platform/linux/form/FormItem.h"

namespace lumiscan::desktop {

/// A section: its header, and its items in a group with lines between them.
class SectionWidget : public QWidget {
 public:
  explicit SectionWidget(const platform::Section& section);

  /// Shows another description of the section. The items that stay keep their widgets; the keyboard focus
  /// stays in its place.
  void update(const platform::Section& section);
  QWidgetList focusParts() const;

 private:
  class Group : public QWidget {
   protected:
    void paintEvent(QPaintEvent* event) override;
  };

  void replace(std::size_t place, const platform::Section::Item& item);

  QLabel header_;
  Group group_;
  QVBoxLayout items_{&group_};
  std::vector<FormItem*> widgets_;  ///< Owned by the group.
};

}  // namespace lumiscan::desktop

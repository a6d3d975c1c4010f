#pragma once

#include <QMessageBox>
#include <QPointer>

#include "platform/Alert.h"
#include "platform/linux/Appearance.h"

namespace lumiscan::desktop {

/// Alerts as the toolkit's message boxes, dark or light as the user prefers.
class QtAlerts : public platform::Alerts {
 public:
  /// `colorScheme` outlives the alerts.
  explicit QtAlerts(ColorScheme& colorScheme) : colorScheme_(colorScheme) {}
  void runModal(const platform::Alert& alert) override;

 private:
  ColorScheme& colorScheme_;
  QPointer<QMessageBox> open_;  ///< The latest.
};

}  // namespace lumiscan::desktop

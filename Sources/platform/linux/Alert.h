#pragma once

#include <QMessageBox>
#include <QPointer>
#include <functional>
#include <utility>

#include "platform/Alert.h"

namespace lumiscan::desktop {

/// Alerts as the toolkit's message boxes, dark or light as the user prefers.
class QtAlerts : public platform::Alerts {
 public:
  /// `prefersDark` outlives the alerts.
  explicit QtAlerts(std::function<bool()> prefersDark) : prefersDark_(std::move(prefersDark)) {}
  void runModal(const platform::Alert& alert) override;

 private:
  std::function<bool()> prefersDark_;
  QPointer<QMessageBox> open_;  ///< The latest.
};

}  // namespace lumiscan::desktop

#pragma once

#include <QMessageBox>
#include <QPointer>

#include "platform/Alert.h"

namespace lumiscan::desktop {

/// Alerts as the toolkit's message boxes.
class QtAlerts : public platform::Alerts {
 public:
  void runModal(const platform::Alert& alert) override;

 private:
  QPointer<QMessageBox> open_;  ///< The latest.
};

}  // namespace lumiscan::desktop

#include "platform/linux/Alert.h"

#include <QCoreApplication>

#include "platform/linux/StatusIcon.h"

namespace lumiscan::desktop {

namespace {

constexpr int iconSide = 48;  // In points.

QPixmap icon(const QMessageBox& box) {
  const qreal scale = box.devicePixelRatioF();
  QPixmap pixmap = QPixmap::fromImage(
      symbolPicture("text.viewfinder", qRound(iconSide * scale), box.palette().color(QPalette::WindowText)));
  pixmap.setDevicePixelRatio(scale);
  return pixmap;
}

}  // namespace

void QtAlerts::runModal(const platform::Alert& alert) {
  const QString message = QString::fromStdString(alert.messageText);
  if (open_ && open_->text() == message) {
    open_->raise();
    open_->activateWindow();
    return;
  }
  QMessageBox box;
  open_ = &box;
  box.setWindowTitle(QCoreApplication::applicationName());
  box.setTextFormat(Qt::PlainText);
  box.setText(message);
  box.setInformativeText(QString::fromStdString(alert.informativeText));
  box.setIconPixmap(icon(box));
  box.setStandardButtons(QMessageBox::Ok);
  box.exec();
}

}  // namespace lumiscan::desktop

#include "platform/linux/Alert.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QTextDocument>

#include "platform/linux/StatusIcon.h"
#include "platform/linux/ToolkitConnection.h"
#include "platform/linux/form/FormPalette.h"
#include "platform/linux/x11/Activation.h"

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

/// The text, of which every character is literal, for a label that looks itself what it is given.
QString literal(const QString& text) {
  return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}

}  // namespace

void QtAlerts::runModal(const platform::Alert& alert) {
  const QString message =
      QStringLiteral("<big><b>%1</b></big>").arg(QString::fromStdString(alert.messageText).toHtmlEscaped());
  if (open_ && open_->text() == message) {
    x11::activate(toolkitConnection(), static_cast<xcb_window_t>(open_->winId()));
    return;
  }
  QMessageBox box;
  open_ = &box;
  box.setWindowTitle(QCoreApplication::applicationName());
  box.setTextFormat(Qt::RichText);
  box.setText(message);
  box.setInformativeText(literal(QString::fromStdString(alert.informativeText)));
  const auto followColorScheme = [&] {
    box.setPalette(formPalette(colorScheme_.isDark()));
    box.setIconPixmap(icon(box));
  };
  followColorScheme();
  QObject::connect(&colorScheme_, &ColorScheme::changed, &box, followColorScheme);
  box.setWindowIcon(programIcon());
  box.setStandardButtons(QMessageBox::Ok);
  box.button(QMessageBox::Ok)->setIcon({});
  box.exec();
}

}  // namespace lumiscan::desktop

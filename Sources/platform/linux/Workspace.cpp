#include "platform/linux/Workspace.h"

#include <QProcess>
#include <QStandardPaths>
#include <QStringList>

namespace lumiscan::desktop {

namespace {

void openPrivacySettings() {
  for (const char* program : {"gnome-control-center", "cinnamon-settings"}) {
    const QString found = QStandardPaths::findExecutable(program);
    if (found.isEmpty()) continue;
    QProcess::startDetached(found, {"privacy"});
    return;
  }
}

}  // namespace

void XdgWorkspace::openURL(std::string_view url) {
  if (url == platform::screenRecordingSettingsURL)
    openPrivacySettings();
  else
    QProcess::startDetached("xdg-open", {QString::fromUtf8(url.data(), static_cast<qsizetype>(url.size()))});
}

}  // namespace lumiscan::desktop

#include "platform/linux/Workspace.h"

#include <QProcess>
#include <QStandardPaths>
#include <QStringList>

#include "platform/linux/Graphics.h"

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
    QProcess::startDetached("xdg-open", {qtString(url)});
}

}  // namespace lumiscan::desktop

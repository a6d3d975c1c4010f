// Makes the pictures of the settings window: settings_pictures FOLDER [SCALE]. Shows it on a private desktop
// and saves what the screen shows of it: at scale 1 light, from the top, and dark, at the end.

#include <QApplication>
#include <QImage>
#include <QPalette>
#include <QScrollArea>
#include <QScrollBar>
#include <QWidget>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "desktop/PrivateDesktop.h"
#include "platform/Application.h"
#include "platform/linux/LinuxDesktop.h"
#include "settings/SettingsWindowController.h"

namespace {

using lumiscan::testing::PrivateDesktop;
using lumiscan::testing::waitUntil;

void processEvents() { QCoreApplication::processEvents(); }

void useDarkColors() {
  QPalette palette(QColor(0x3A, 0x3A, 0x3D), QColor(0x24, 0x24, 0x26));
  palette.setColor(QPalette::Base, QColor(0x1C, 0x1C, 0x1E));
  QGuiApplication::setPalette(palette);
}

QImage screenImage(const PrivateDesktop& desktop) {
  const auto words = desktop.screenPixels();
  return QImage(reinterpret_cast<const uchar*>(words.data()), desktop.width(), desktop.height(),
                QImage::Format_RGB32)
      .copy();
}

/// Shows the settings window and saves a picture of it; whether that succeeded.
bool savePicture(const PrivateDesktop& screen, bool isAtEnd, const std::filesystem::path& file) {
  lumiscan::SettingsWindowController controller;
  controller.show();
  if (!waitUntil([&] { return controller.window()->isKeyWindow(); }, processEvents)) return false;
  const QWidget* const window = QApplication::activeWindow();
  QScrollBar* const scrollBar = window->findChild<QScrollArea*>()->verticalScrollBar();
  if (isAtEnd) scrollBar->setValue(scrollBar->maximum());
  QImage seen;
  const auto paintsNoMore = [&] {
    const QImage before = std::exchange(seen, screenImage(screen));
    return seen == before;
  };
  if (!waitUntil(paintsNoMore, processEvents)) return false;
  constexpr int around = 12;  // Pixels.
  const QRect frame = window->frameGeometry();
  const QRect pixels(frame.topLeft() * window->devicePixelRatio(), frame.size() * window->devicePixelRatio());
  return seen.copy(pixels.adjusted(-around, -around, around, around))
      .save(QString::fromStdString(file.string()));
}

}  // namespace

int main(int argc, char** argv) {
  const std::filesystem::path folder = argc > 1 ? argv[1] : ".";
  std::filesystem::create_directories(folder);
  const std::string scale = argc > 2 ? argv[2] : "1";
  setenv("QT_SCALE_FACTOR", scale.c_str(), 1);
  PrivateDesktop screen(1600, 1300);
  lumiscan::desktop::LinuxDesktop desktop(argc, argv);
  lumiscan::platform::Application::shared();
  lumiscan::testing::Process({"xsetroot", "-solid", "#5a7894"}).waitForEnd();
  bool saved = savePicture(screen, false,
                           folder / ("settings-" + (scale == "1" ? "light" : "scale-" + scale) + ".png"));
  if (scale == "1") {
    useDarkColors();
    saved = saved && savePicture(screen, true, folder / "settings-dark.png");
  }
  if (!saved) std::cerr << "settings_pictures: no picture" << std::endl;
  return saved ? EXIT_SUCCESS : EXIT_FAILURE;
}

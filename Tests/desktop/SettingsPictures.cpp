// Makes the pictures of the settings window: settings_pictures FOLDER [SCALE [SCROLLED]]. Shows it on a
// private desktop, light and dark, scrolled down by so many points, and saves what the screen shows of it.

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

}  // namespace

int main(int argc, char** argv) {
  const std::filesystem::path folder = argc > 1 ? argv[1] : ".";
  std::filesystem::create_directories(folder);
  const double scale = argc > 2 ? std::atof(argv[2]) : 1;
  setenv("QT_SCALE_FACTOR", argc > 2 ? argv[2] : "1", 1);
  PrivateDesktop screen(1600, 1300);
  lumiscan::desktop::LinuxDesktop desktop(argc, argv);
  lumiscan::platform::Application::shared();
  lumiscan::testing::Process({"xsetroot", "-solid", "#5a7894"}).waitForEnd();
  for (const bool dark : {false, true}) {
    if (dark) useDarkColors();
    lumiscan::SettingsWindowController controller;
    controller.show();
    const QWidget* const window = QApplication::topLevelWidgets().back();
    QImage seen;
    const auto paintsNoMore = [&] {
      const QImage before = std::exchange(seen, screenImage(screen));
      return seen == before;
    };
    bool shows = waitUntil([&] { return controller.window()->isKeyWindow(); }, processEvents);
    if (argc > 3) window->findChild<QScrollArea*>()->verticalScrollBar()->setValue(std::atoi(argv[3]));
    shows = shows && waitUntil(paintsNoMore, processEvents);
    if (!shows) {
      std::cerr << "settings_pictures: no window" << std::endl;
      return EXIT_FAILURE;
    }
    const QRect frame = window->frameGeometry();
    const QRect pixels(frame.topLeft() * scale, frame.size() * scale);
    seen.copy(pixels.adjusted(-20, -20, 20, 20))
        .save(
            QString::fromStdString((folder / (dark ? "settings-dark.png" : "settings-light.png")).string()));
  }
  return EXIT_SUCCESS;
}

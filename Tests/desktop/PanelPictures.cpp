// Makes the pictures of the result panel: panel_pictures FOLDER [SCALE]. Shows it on a private desktop, light
// and dark, and saves what the screen shows around it.

#include <QGuiApplication>
#include <QImage>
#include <QPalette>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "desktop/PrivateDesktop.h"
#include "output/ResultHUD.h"
#include "platform/Application.h"
#include "platform/linux/LinuxDesktop.h"

namespace {

using lumiscan::testing::PrivateDesktop;

struct Message {
  const char* name;
  const char* title;
  const char* preview;
  bool isError;
  const char* icon;
};

constexpr Message messages[] = {
    {"success", "Copied", "The quick brown fox jumps over", false, nullptr},
    {"error", "No text recognized", nullptr, true, nullptr},
    {"hint", "Drag to select an area", "Esc or click cancels", false, "text.magnifyingglass"},
    {"long-preview", "Added to additive clipboard",
     "Everything that was captured: the start and the end stay visible, whatever stands between them", false,
     nullptr},
};

std::optional<std::string> optional(const char* text) {
  return text ? std::optional<std::string>(text) : std::nullopt;
}

void useDarkColors() { QGuiApplication::setPalette(QPalette(QColor(0x30, 0x30, 0x33))); }

/// The panel and some of what is around it.
QImage screenAround(const PrivateDesktop& desktop, xcb_window_t panel) {
  const xcb_rectangle_t at = desktop.geometryOf(panel);
  const auto words = desktop.screenPixels();
  const QImage screen(reinterpret_cast<const uchar*>(words.data()), desktop.width(), desktop.height(),
                      QImage::Format_RGB32);
  return screen.copy(QRect(at.x, at.y, at.width, at.height).adjusted(-20, -12, 20, 20));
}

}  // namespace

int main(int argc, char** argv) {
  const std::filesystem::path folder = argc > 1 ? argv[1] : ".";
  std::filesystem::create_directories(folder);
  setenv("QT_SCALE_FACTOR", argc > 2 ? argv[2] : "1", 1);
  PrivateDesktop screen(2000, 1000);
  lumiscan::desktop::LinuxDesktop desktop(argc, argv);
  lumiscan::platform::Application::shared();
  for (const bool dark : {false, true}) {
    lumiscan::testing::Process ground({"xsetroot", "-solid", dark ? "#26384a" : "#7c9cb8"});
    ground.waitForEnd();
    if (dark) useDarkColors();
    const auto hud = std::make_shared<lumiscan::ResultHUD>();
    for (const Message& message : messages) {
      hud->show(message.title, optional(message.preview), message.isError, optional(message.icon));
      const bool shows =
          lumiscan::testing::waitUntil([&] { return screen.windowsOfClass("LumiscanPanel").size() == 1; },
                                       [] { QCoreApplication::processEvents(); });
      if (!shows) {
        std::cerr << "panel_pictures: no panel" << std::endl;
        return EXIT_FAILURE;
      }
      const auto name = std::string(message.name) + (dark ? "-dark.png" : "-light.png");
      screenAround(screen, screen.windowsOfClass("LumiscanPanel").front())
          .save(QString::fromStdString((folder / name).string()));
    }
  }
  return EXIT_SUCCESS;
}

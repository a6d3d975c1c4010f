// Makes the pictures of the menu and the about box: menu_pictures FOLDER [SCALE]. Runs the program on a
// private desktop with an embedding tray, light and dark, and saves what the screen shows.

#include <linux/input-event-codes.h>

#include <QGuiApplication>
#include <QImage>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "app/AppDelegate.h"
#include "desktop/PrivateDesktop.h"
#include "output/HistoryStore.h"
#include "platform/linux/LinuxDesktop.h"
#include "platform/linux/form/FormPalette.h"
#include "settings/Settings.h"

namespace {

using lumiscan::testing::PrivateDesktop;
using lumiscan::testing::Process;
using Windows = std::vector<xcb_window_t>;

void processEvents() { QCoreApplication::processEvents(QEventLoop::AllEvents, 5); }

void require(const std::function<bool()>& condition, const char* what) {
  if (lumiscan::testing::waitUntil(condition, processEvents)) return;
  std::cerr << "menu_pictures: no " << what << std::endl;
  std::exit(EXIT_FAILURE);
}

QImage picture(const PrivateDesktop& screen, const QRect& part) {
  const auto words = screen.screenPixels();
  return QImage(reinterpret_cast<const uchar*>(words.data()), screen.width(), screen.height(),
                QImage::Format_RGB32)
      .copy(part);
}

/// Waits until the screen shows the same for a while, and saves the part.
void save(const PrivateDesktop& screen, const QRect& part, const std::filesystem::path& file) {
  QImage shown = picture(screen, part);
  int same = 0;
  require(
      [&] {
        const QImage now = picture(screen, part);
        same = now == shown ? same + 1 : 0;
        shown = now;
        return same == 10;
      },
      "still picture");
  shown.save(QString::fromStdString(file.string()));
}

void fillHistory() {
  auto& history = lumiscan::HistoryStore::shared();
  const auto add = [&history](double hour, lumiscan::CaptureMode mode, const char* text) {
    history.add({lumiscan::platform::UUID::random(), {hour * 3600}, mode, text});
  };
  add(9.2, lumiscan::CaptureMode::text, "The quick brown fox jumps over the lazy dog");
  add(9.5, lumiscan::CaptureMode::barcode, "https://example.org/tickets?id=24680&from=poster");
  add(11.8, lumiscan::CaptureMode::text, "snake_case & <b>CamelCase</b>\nand more");
  add(14.1, lumiscan::CaptureMode::textToSpeech, "Größe: 24 × 36 cm");
}

Windows ours(const PrivateDesktop& screen) { return screen.windowsOfClass("Lumiscan"); }

}  // namespace

int main(int argc, char** argv) {
  const std::filesystem::path folder = argc > 1 ? argv[1] : ".";
  const int scale = argc > 2 ? std::atoi(argv[2]) : 1;
  const auto file = [&](const char* name, bool dark) {
    const QString size = scale == 1 ? QString() : QStringLiteral("-%1x").arg(scale);
    return folder / (name + QString(dark ? "-dark" : "") + size + ".png").toStdString();
  };
  std::filesystem::create_directories(folder);
  setenv("QT_SCALE_FACTOR", argc > 2 ? argv[2] : "1", 1);
  setenv("TZ", "UTC", 1);
  PrivateDesktop screen(1000 * scale, 600 * scale);
  lumiscan::desktop::LinuxDesktop desktop(argc, argv);
  lumiscan::platform::Application::shared();
  fillHistory();
  lumiscan::Settings::setBool(lumiscan::Settings::additiveEnabledKey, true);
  const auto delegate = std::make_shared<lumiscan::AppDelegate>();
  delegate->applicationDidFinishLaunching();

  const int side = 28 * scale;
  for (const bool dark : {false, true}) {
    Process({"xsetroot", "-solid", dark ? "#26384a" : "#7c9cb8"}).waitForEnd();
    QGuiApplication::setPalette(lumiscan::desktop::formPalette(dark));
    const Process tray({"trayer", "--edge", "top", "--align", "right", "--transparent", "true", "--alpha",
                        "0", "--tint", dark ? "0x222226" : "0xf0f0f0", "--height", std::to_string(side)});
    const QRect icon(screen.width() - side, 0, side, side);
    const QRgb ink = dark ? 0xF2F2F2 : 0x2E2E2E;
    require(
        [&] {
          const QImage shown = picture(screen, icon);
          for (int x = 0; x < side; ++x)
            if ((shown.pixel(x, side / 2) & 0xFFFFFF) == ink) return true;
          return false;
        },
        "icon");
    screen.moveMouse(screen.width() - side / 2, side / 2);
    screen.buttonDown();
    screen.buttonUp();
    require([&] { return ours(screen).size() == 1 && !screen.canGrabKeyboard(); }, "menu");
    constexpr int itemsToHistory = 9;
    for (int i = 0; i < itemsToHistory; ++i) screen.pressKeys({KEY_DOWN});
    screen.pressKeys({KEY_RIGHT});
    require([&] { return ours(screen).size() == 2; }, "submenu");
    save(screen, QRect(screen.width() - 700 * scale, 0, 700 * scale, 380 * scale), file("menu", dark));
    for (int i = 0; i < 2; ++i) screen.pressKeys({KEY_ESC});
    require([&] { return ours(screen).empty(); }, "end of the menu");

    lumiscan::platform::MainQueue::async([&] { delegate->showAbout(); });
    const auto shown = std::make_shared<bool>(false);
    lumiscan::platform::MainQueue::async([&, shown] {
      require([&] { return ours(screen).size() == 1; }, "about box");
      screen.moveMouse(0, screen.height() - 1);
      const QPoint middle(screen.width() / 2, screen.height() * 5 / 12);
      const QSize size = QSize(440, 320) * scale;
      save(screen, QRect(middle - QPoint(size.width(), size.height()) / 2, size), file("about", dark));
      screen.pressKeys({KEY_ESC});
      *shown = true;
    });
    require([&] { return *shown && ours(screen).empty(); }, "end of the about box");
  }
  return EXIT_SUCCESS;
}

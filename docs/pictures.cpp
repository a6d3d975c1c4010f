// Makes the pictures of this folder: pictures overlay|panel|menu|settings FOLDER [SCALE]. Runs the program on
// a private desktop, light and dark, and saves what the screen shows of a drag, of the panel, of the menu and
// the about box, or of the settings window.

#include <linux/input-event-codes.h>

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>

#include "app/AppDelegate.h"
#include "desktop/PrivateDesktop.h"
#include "output/HistoryStore.h"
#include "output/ResultHUD.h"
#include "platform/linux/LinuxDesktop.h"
#include "platform/linux/form/FormPalette.h"
#include "settings/Settings.h"

namespace {

using namespace lumiscan;
using testing::PrivateDesktop;
using testing::Process;

void processEvents() { QCoreApplication::processEvents(QEventLoop::AllEvents, 5); }

void require(const std::function<bool()>& condition, const char* what) {
  if (testing::waitUntil(condition, processEvents)) return;
  std::cerr << "pictures: no " << what << std::endl;
  std::exit(EXIT_FAILURE);
}

/// Takes the pictures. Sizes and places are in pixels.
class Camera {
 public:
  Camera(PrivateDesktop& screen, std::filesystem::path folder, int scale)
      : screen_(screen), folder_(std::move(folder)), scale_(scale) {
    std::filesystem::create_directories(folder_);
  }

  PrivateDesktop& screen() const { return screen_; }
  int scale() const { return scale_; }
  std::vector<xcb_window_t> windows() const { return screen_.windowsOfClass("Lumiscan"); }
  /// Of a window, with its frame and some of what is around it.
  QRect placeOf(const QWidget& window) const {
    constexpr int around = 12;
    const QRect frame = window.frameGeometry();
    return QRect(frame.topLeft() * scale_, frame.size() * scale_).adjusted(-around, -around, around, around);
  }
  QImage look(const QRect& part) const {
    const auto words = screen_.screenPixels();
    return QImage(reinterpret_cast<const uchar*>(words.data()), screen_.width(), screen_.height(),
                  QImage::Format_RGB32)
        .copy(part);
  }
  /// Saves a part of the screen once that has stayed the same for a while.
  void save(const QRect& part, const std::string& name) const {
    QImage shown = look(part);
    int same = 0;
    const auto isStill = [&] {
      const QImage now = look(part);
      same = now == shown ? same + 1 : 0;
      shown = now;
      return same == 10;
    };
    require(isStill, "still picture");
    shown.save(QString::fromStdString((folder_ / (name + ".png")).string()));
  }
  /// The colours of the desktop and of the program.
  static void use(bool dark) {
    Process({"xsetroot", "-solid", dark ? "#26384a" : "#7c9cb8"}).waitForEnd();
    QGuiApplication::setPalette(desktop::formPalette(dark));
  }

 private:
  PrivateDesktop& screen_;
  const std::filesystem::path folder_;
  const int scale_;
};

/// A drag around a text that can't be copied in any other way: with the hint, or at a larger scale from near.
void photographOverlay(const Camera& camera) {
  PrivateDesktop& screen = camera.screen();
  const int scale = camera.scale();
  Camera::use(false);
  constexpr int margin = 24;
  QLabel page(
      "The backup of 24 November is not complete.\n"
      "3 of 1,846 files could not be read: the disk reports error 0x51F4.\n"
      "Their names are in the log.");
  page.setWindowTitle("Backup");
  page.setMargin(margin);
  page.setAlignment(Qt::AlignTop);
  page.setFixedSize(page.sizeHint() + QSize(0, margin));  // Room for the badge.
  page.move((screen.width() / scale - page.width()) / 2, 110);
  page.show();
  const auto delegate = std::make_shared<AppDelegate>();
  delegate->applicationDidFinishLaunching();
  require([&] { return page.isActiveWindow() && screen.shortcutIsTaken(); }, "page");
  screen.pressKeys({KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2});
  require([&] { return camera.windows().size() == 2 && screen.inputIsTaken(); }, "overlay");

  constexpr int around = 5;
  const QRect text = page.rect()
                         .marginsRemoved({margin, margin, margin, 2 * margin})
                         .marginsAdded({around, around, around, around});
  const auto mouse = [&](const QPoint& inPage) {
    const QPoint point = page.mapToGlobal(inPage) * scale;
    screen.moveMouse(point.x(), point.y());
  };
  mouse(text.topLeft());
  screen.buttonDown();
  mouse(text.center());
  mouse(text.bottomRight());
  if (scale == 1)
    camera.save({200, 0, 600, 300}, "overlay");
  else
    camera.save(camera.placeOf(page), "overlay-" + std::to_string(scale) + "x");
}

void photographPanel(const Camera& camera) {
  const auto hud = std::make_shared<ResultHUD>();
  for (const bool isError : {false, true}) {
    Camera::use(isError);
    if (isError)
      hud->show("No text recognized", std::nullopt, true);
    else
      hud->show("Copied", "The quick brown fox jumps over");
    const auto panels = [&] { return camera.screen().windowsOfClass("LumiscanPanel"); };
    require([&] { return panels().size() == 1; }, "panel");
    const xcb_rectangle_t at = camera.screen().geometryOf(panels()[0]);
    camera.save(QRect(at.x, at.y, at.width, at.height).adjusted(-20, -12, 20, 20),
                isError ? "error-dark" : "success-light");
  }
}

void fillHistory() {
  const auto add = [](double hour, CaptureMode mode, const char* text) {
    HistoryStore::shared().add({platform::UUID::random(), {hour * 3600}, mode, text});
  };
  add(9.2, CaptureMode::text, "The quick brown fox jumps over the lazy dog");
  add(9.5, CaptureMode::barcode, "https://example.org/tickets?id=24680&from=poster");
  add(11.8, CaptureMode::text, "snake_case & <b>CamelCase</b>\nand more");
  add(14.1, CaptureMode::textToSpeech, "Größe: 24 × 36 cm");
}

void photographMenu(const Camera& camera) {
  PrivateDesktop& screen = camera.screen();
  const int side = 28 * camera.scale();  // Of the tray's icons.
  const auto windows = [&camera] { return camera.windows().size(); };
  fillHistory();
  Settings::setBool(Settings::additiveEnabledKey, true);
  const auto delegate = std::make_shared<AppDelegate>();
  delegate->applicationDidFinishLaunching();
  for (const bool dark : {false, true}) {
    std::string ending = dark ? "-dark" : "";
    if (camera.scale() != 1) ending.append("-").append(std::to_string(camera.scale())).append("x");
    Camera::use(dark);
    const Process tray({"trayer", "--edge", "top", "--align", "right", "--transparent", "true", "--alpha",
                        "0", "--tint", dark ? "0x222226" : "0xf0f0f0", "--height", std::to_string(side)});
    const QRgb ink = dark ? 0xF2F2F2 : 0x2E2E2E;
    const auto iconShows = [&] {
      for (int x = screen.width() - side; x < screen.width(); ++x)
        if (screen.pixelAt(x, side / 2) == ink) return true;
      return false;
    };
    require(iconShows, "icon");
    screen.click(screen.width() - side / 2, side / 2);
    require([&] { return windows() == 1 && screen.inputIsTaken(); }, "menu");
    constexpr int itemsToHistory = 9;
    for (int i = 0; i < itemsToHistory; ++i) screen.pressKeys({KEY_DOWN});
    screen.pressKeys({KEY_RIGHT});
    require([&] { return windows() == 2; }, "submenu");
    const QSize around = QSize(700, 380) * camera.scale();
    camera.save({QPoint(screen.width() - around.width(), 0), around}, "menu" + ending);
    for (int i = 0; i < 2; ++i) screen.pressKeys({KEY_ESC});
    require([&] { return windows() == 0; }, "end of the menu");

    platform::MainQueue::async([&] { delegate->showAbout(); });
    bool saved = false;
    platform::MainQueue::async([&] {
      require([&] { return windows() == 1; }, "about box");
      screen.moveMouse(0, screen.height() - 1);
      camera.save(camera.placeOf(*QApplication::activeModalWidget()), "about" + ending);
      screen.pressKeys({KEY_ESC});
      saved = true;
    });
    require([&] { return saved && windows() == 0; }, "end of the about box");
  }
}

/// At scale 1 light, from the top, and dark, at the end; else light alone.
void photographSettings(const Camera& camera) {
  for (const bool dark : {false, true}) {
    if (dark && camera.scale() != 1) return;
    Camera::use(dark);
    SettingsWindowController controller;
    controller.show();
    require([&] { return controller.window()->isKeyWindow(); }, "settings window");
    const QWidget* const window = QApplication::activeWindow();
    QScrollBar* const scrollBar = window->findChild<QScrollArea*>()->verticalScrollBar();
    if (dark) scrollBar->setValue(scrollBar->maximum());
    camera.save(camera.placeOf(*window), camera.scale() != 1
                                             ? "settings-scale-" + std::to_string(camera.scale())
                                         : dark ? "settings-dark"
                                                : "settings-light");
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::map<std::string, void (*)(const Camera&)> topics = {{"overlay", photographOverlay},
                                                                 {"panel", photographPanel},
                                                                 {"menu", photographMenu},
                                                                 {"settings", photographSettings}};
  const auto topic = topics.find(argc > 1 ? argv[1] : "");
  if (topic == topics.end() || argc < 3) {
    std::cerr << "usage: pictures overlay|panel|menu|settings FOLDER [SCALE]" << std::endl;
    return EXIT_FAILURE;
  }
  const int scale = argc > 3 ? std::atoi(argv[3]) : 1;
  setenv("QT_SCALE_FACTOR", std::to_string(scale).c_str(), 1);
  setenv("TZ", "UTC", 1);
  PrivateDesktop screen(1000 * scale, 700 * scale);
  desktop::LinuxDesktop desktop;
  platform::Application::shared();
  topic->second(Camera(screen, argv[2], scale));
}

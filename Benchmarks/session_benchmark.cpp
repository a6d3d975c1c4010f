// How fast a capture session is, on private X servers: from the key press to the overlays, the picture of a
// large screen, and the work of following the mouse. Prints Markdown tables.

#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "capture/ScreenCaptureController.h"
#include "desktop/PrivateDesktop.h"
#include "platform/Display.h"
#include "platform/linux/LinuxDesktop.h"

namespace {

using lumiscan::testing::PrivateDesktop;
using lumiscan::testing::Process;
using Clock = std::chrono::steady_clock;

constexpr int rounds = 30;

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

struct Spread {
  double median;
  double worst;
};

Spread spread(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return {values[values.size() / 2], values.back()};
}

/// Looks often, and yet leaves the processor to what is measured.
void waitClosely(const std::function<bool()>& condition) {
  const auto start = Clock::now();
  while (!condition()) {
    if (millisecondsSince(start) > 10000) {
      std::fprintf(stderr, "session_benchmark: what is measured never came\n");
      std::exit(EXIT_FAILURE);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
}

/// The program on a desktop, holding its shortcut.
class RunningProgram {
 public:
  explicit RunningProgram(PrivateDesktop& desktop) : desktop_(desktop), process_({LUMISCAN_PROGRAM}) {
    // Until it answers the shortcut; that session warms it up.
    waitClosely([this] {
      press();
      return waitUntilShown(std::chrono::milliseconds(500));
    });
    endSession();
  }

  void press() { desktop_.pressKeys({KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2}); }
  void endSession() {
    desktop_.pressKeys({KEY_ESC});
    waitClosely([this] { return overlays() == 0; });
    // Frozen pictures are used for a moment after a session: not what a user's next session meets.
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
  }
  std::size_t overlays() const { return desktop_.windowsOfClass("Lumiscan").size(); }
  const Process& process() const { return process_; }

 private:
  bool waitUntilShown(std::chrono::milliseconds patience) {
    const auto start = Clock::now();
    while (Clock::now() < start + patience)
      if (overlays() > 0) return true;
    return false;
  }

  PrivateDesktop& desktop_;
  Process process_;
};

/// Counts the top-level windows that are shown from now on.
class ShownWindows {
 public:
  explicit ShownWindows(xcb_connection_t* x) : x_(x) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(x, root, XCB_CW_EVENT_MASK, &events);
    std::free(xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr));
    count();
    count_ = 0;
  }
  int count() {
    while (xcb_generic_event_t* const event = xcb_poll_for_event(x_)) {
      if ((event->response_type & 0x7F) == XCB_MAP_NOTIFY) ++count_;
      std::free(event);
    }
    return count_;
  }

 private:
  xcb_connection_t* x_;
  int count_ = 0;
};

// Two monitors side by side.
constexpr int monitorWidth = 1920, monitorHeight = 1080;
constexpr int mouseX = 600, mouseY = 500;

void attachTwoMonitors() {
  PrivateDesktop::setMonitor("*RIGHT", "1920/508x1080/286+1920+0", "screen");
  PrivateDesktop::setMonitor("LEFT", "1920/508x1080/286+0+0", "none");
}

struct Opening {
  Spread shown;    ///< Until both windows show, painted or not.
  Spread painted;  ///< Until the last one is painted.
};

/// From pressing the last key of the shortcut.
Opening keyPressToOverlays(PrivateDesktop& desktop, bool compositor) {
  RunningProgram program(desktop);
  std::vector<double> shown, times;
  for (int i = 0; i < rounds; ++i) {
    // The crosshair's middle, and with a compositor the pixel that each overlay paints. Without one the
    // server paints an overlay when it maps it.
    const std::vector<std::pair<int, int>> points = {
        {mouseX, mouseY}, {monitorWidth - 1, monitorHeight / 2}, {2 * monitorWidth - 1, monitorHeight / 2}};
    std::vector<std::uint32_t> before;
    for (const auto& [x, y] : points) before.push_back(desktop.pixelAt(x, y));
    const std::size_t painted = compositor ? points.size() : 1;
    desktop.keyDown(KEY_LEFTMETA);
    desktop.keyDown(KEY_LEFTSHIFT);
    ShownWindows windows(desktop.x());
    const auto start = Clock::now();
    desktop.keyDown(KEY_2);
    waitClosely([&] { return windows.count() == 2; });
    shown.push_back(millisecondsSince(start));
    waitClosely([&] {
      for (std::size_t p = 0; p < painted; ++p)
        if (desktop.pixelAt(points[p].first, points[p].second) == before[p]) return false;
      return true;
    });
    times.push_back(millisecondsSince(start));
    if (program.overlays() != 2) std::exit(EXIT_FAILURE);
    for (const auto key : {KEY_2, KEY_LEFTSHIFT, KEY_LEFTMETA}) desktop.keyUp(static_cast<std::uint8_t>(key));
    program.endSession();
  }
  return {spread(shown), spread(times)};
}

/// From starting slop until its window shows.
Spread slopStart(PrivateDesktop& desktop, const std::vector<std::string>& command) {
  const auto shows = [&] { return !desktop.windowsOfClass("slop").empty(); };
  std::vector<double> times;
  for (int i = 0; i < rounds; ++i) {
    {
      ShownWindows windows(desktop.x());
      const auto start = Clock::now();
      const Process slop(command);
      waitClosely([&] { return windows.count() == 1; });
      times.push_back(millisecondsSince(start));
    }
    waitClosely([&] { return !shows(); });
  }
  return spread(times);
}

void measureLatency() {
  std::printf("| two screens of 1920 by 1080          | compositor | median ms | worst ms |\n");
  std::printf("|--------------------------------------|------------|----------:|---------:|\n");
  for (const bool compositor : {false, true}) {
    PrivateDesktop desktop(2 * monitorWidth, monitorHeight);
    attachTwoMonitors();
    desktop.moveMouse(mouseX, mouseY);
    if (compositor) desktop.startCompositor();
    const auto row = [&](const char* what, const Spread& times) {
      std::printf("| %-36s | %-10s | %9.1f | %8.1f |\n", what, compositor ? "picom" : "none", times.median,
                  times.worst);
    };
    const Opening opening = keyPressToOverlays(desktop, compositor);
    row("Lumiscan: key press to both windows", opening.shown);
    row("Lumiscan: key press to both painted", opening.painted);
    row("slop: start to its window", slopStart(desktop, {"slop"}));
    row("slop --noopengl: the same", slopStart(desktop, {"slop", "--noopengl"}));
  }
}

void measureSnapshot() {
  constexpr int width = 3840, height = 2160;
  PrivateDesktop x(width, height);
  x.showPicture();
  lumiscan::desktop::LinuxDesktop desktop;
  auto& displays = lumiscan::platform::Displays::shared();
  const auto screen = displays.screens().at(0);
  std::vector<double> snapshots, copies, copiesToNew;
  std::vector<std::byte> known;
  for (int i = 0; i < rounds; ++i) {
    auto start = Clock::now();
    const auto image = displays.createImage(screen.displayID);
    const auto cropped = lumiscan::ScreenCaptureController::crop(*image, {{100, 100}, {3000, 1500}}, screen);
    snapshots.push_back(millisecondsSince(start));
    if (!cropped || cropped->width() != 3000) std::exit(EXIT_FAILURE);

    const auto size = static_cast<std::size_t>(image->bytesPerRow()) * height;
    known.resize(size);
    start = Clock::now();
    std::memcpy(known.data(), image->row(0), size);
    copies.push_back(millisecondsSince(start));

    void* const fresh = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (fresh == MAP_FAILED) std::exit(EXIT_FAILURE);
    start = Clock::now();
    std::memcpy(fresh, image->row(0), size);
    copiesToNew.push_back(millisecondsSince(start));
    if (std::memcmp(fresh, known.data(), size) != 0) std::exit(EXIT_FAILURE);
    munmap(fresh, size);
  }
  std::printf("\n| 3840 by 2160 pixels               | median ms | worst ms |\n");
  std::printf("|-----------------------------------|----------:|---------:|\n");
  const auto row = [](const char* what, const Spread& times) {
    std::printf("| %-33s | %9.1f | %8.1f |\n", what, times.median, times.worst);
  };
  row("snapshot and crop", spread(snapshots));
  row("plain copy to new memory", spread(copiesToNew));
  row("plain copy to memory in use", spread(copies));
}

/// Seconds of processor time that a process has used.
double processorSeconds(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string word;
  double ticks = 0;
  for (int i = 1; i <= 15 && file >> word; ++i)
    if (i >= 14) ticks += std::stod(word);
  return ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
}

/// Moves the mouse a thousand times a second.
double processorShare(PrivateDesktop& desktop, pid_t process) {
  constexpr int moves = 5000;
  constexpr auto betweenMoves = std::chrono::milliseconds(1);
  const double before = processorSeconds(process);
  const auto start = Clock::now();
  for (int i = 0; i < moves; ++i) {
    desktop.moveMouse(200 + i % 1500 * 2, 200 + i % 700 * 2);
    std::this_thread::sleep_until(start + (i + 1) * betweenMoves);
  }
  return (processorSeconds(process) - before) / (millisecondsSince(start) / 1000) * 100;
}

void measurePointer() {
  std::printf("\n| 1000 mouse events a second, 3840 by 2160 | compositor | share of one core |\n");
  std::printf("|------------------------------------------|------------|------------------:|\n");
  for (const bool compositor : {false, true}) {
    PrivateDesktop desktop(3840, 2160);
    desktop.moveMouse(500, 500);
    if (compositor) desktop.startCompositor();
    RunningProgram program(desktop);
    const auto row = [&](const char* what) {
      std::printf("| %-40s | %-10s | %15.1f %% |\n", what, compositor ? "picom" : "none",
                  processorShare(desktop, program.process().id()));
    };
    program.press();
    waitClosely([&] { return program.overlays() == 1; });
    row("the crosshair follows");
    desktop.moveMouse(150, 150);
    desktop.buttonDown();
    row("a selection is dragged");
    desktop.pressKeys({KEY_ESC});
    desktop.buttonUp();
  }
}

}  // namespace

int main() {
  measureLatency();
  measureSnapshot();
  measurePointer();
}

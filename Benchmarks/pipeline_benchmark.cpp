// From the end of a drag to the text on the clipboard: the program beside the usual shell pipeline, on the
// same rectangles of the same private desktop, by turns.

#include <linux/input-event-codes.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "TextPage.h"
#include "desktop/PrivateDesktop.h"

namespace {

using lumiscan::showTextPage;
using lumiscan::testing::PrivateDesktop;
using lumiscan::testing::Process;
using lumiscan::testing::waitUntil;
using Clock = std::chrono::steady_clock;

void require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double median(std::vector<double> times) {
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

/// In pixels of the screen.
struct Rectangle {
  const char* name;
  int x, y, width, height;
};
constexpr Rectangle rectangles[] = {
    {"short line, 320 x 26", 8, 32, 320, 26},
    {"paragraph, 640 x 160", 8, 32, 640, 160},
    {"page, 1200 x 790", 4, 4, 1200, 790},
};

class Bench {
 public:
  explicit Bench(std::string program) : program_(std::move(program)) {
    showTextPage(desktop_);
    xcb_connection_t* x = desktop_.x();
    xcb_prefetch_extension_data(x, &xcb_xfixes_id);
    std::free(xcb_xfixes_query_version_reply(x, xcb_xfixes_query_version(x, 2, 0), nullptr));
    xcb_xfixes_select_selection_input(x, desktop_.root(), desktop_.atom("CLIPBOARD"),
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER);
    xcb_flush(x);
  }

  void launch() {
    running_.reset();
    running_ = Process::start({program_});
    // Its shortcut works as soon as the overlay comes.
    require(waitUntil([this] { return pressed(); }), "the program shows no overlay");
    desktop_.pressKeys({KEY_ESC});
    require(waitUntil([this] { return overlays() == 0; }), "the overlay stays");
  }

  double capture(const Rectangle& r) {
    desktop_.pressKeys({KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2});
    require(waitUntil([this] { return overlays() > 0; }), "no overlay");
    return drag(r, [] {});
  }

  double pipeline(const Rectangle& r) {
    const std::string command = "maim -g " + std::to_string(r.width) + "x" + std::to_string(r.height) + "+" +
                                std::to_string(r.x) + "+" + std::to_string(r.y) +
                                " | tesseract - - 2>/dev/null | xclip -selection clipboard";
    std::unique_ptr<Process> shell;
    return drag(r, [&] { shell = Process::start({"sh", "-c", command}); });
  }

 private:
  std::size_t overlays() const { return desktop_.windowsOfClass("Lumiscan").size(); }

  bool pressed() {
    desktop_.pressKeys({KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2});
    const auto deadline = Clock::now() + std::chrono::milliseconds(200);
    while (overlays() == 0 && Clock::now() < deadline) std::this_thread::yield();
    return overlays() > 0;
  }

  /// Drags as a quick hand does, and returns the milliseconds from letting the button go until the clipboard
  /// has a new owner.
  template <typename Then>
  double drag(const Rectangle& r, const Then& then) {
    constexpr int steps = 20;
    constexpr auto stepTime = std::chrono::milliseconds(20);
    desktop_.moveMouse(r.x, r.y);
    desktop_.buttonDown();
    for (int i = 1; i <= steps; ++i) {
      std::this_thread::sleep_for(stepTime);
      desktop_.moveMouse(r.x + r.width * i / steps, r.y + r.height * i / steps);
    }
    while (auto* event = xcb_poll_for_event(desktop_.x())) std::free(event);
    const auto start = Clock::now();
    desktop_.buttonUp();
    then();
    while (true) {
      require(millisecondsSince(start) < 30'000, "nothing reached the clipboard");
      std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event(xcb_poll_for_event(desktop_.x()),
                                                                       &std::free);
      const auto* extension = xcb_get_extension_data(desktop_.x(), &xcb_xfixes_id);
      if (event && (event->response_type & 0x7F) == extension->first_event + XCB_XFIXES_SELECTION_NOTIFY)
        break;
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    const double time = millisecondsSince(start);
    const auto text = PrivateDesktop::clipboard();
    require(text && text->find_first_not_of(" \n\f") != std::string::npos, "no text was read");
    return time;
  }

  std::string program_;
  PrivateDesktop desktop_;
  std::unique_ptr<Process> running_;
};

void compare(Bench& bench, int repetitions) {
  std::printf("From the end of the drag to the clipboard, medians of %d in milliseconds\n\n", repetitions);
  std::printf("| rectangle            | Lumiscan | pipeline | ratio |\n");
  std::printf("|----------------------|---------:|---------:|------:|\n");
  for (const Rectangle& rectangle : rectangles) {
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int i = 0; i < repetitions; ++i) {
      ours.push_back(bench.capture(rectangle));
      theirs.push_back(bench.pipeline(rectangle));
    }
    std::printf("| %-20s | %8.0f | %8.0f | %5.2f |\n", rectangle.name, median(ours), median(theirs),
                median(ours) / median(theirs));
    std::fflush(stdout);
  }
}

void compareFirst(Bench& bench, int launches) {
  std::vector<double> first;
  std::vector<double> tenth;
  for (int i = 0; i < launches; ++i) {
    bench.launch();
    first.push_back(bench.capture(rectangles[1]));
    for (int more = 0; more < 8; ++more) bench.capture(rectangles[1]);
    tenth.push_back(bench.capture(rectangles[1]));
  }
  std::printf("\nThe paragraph after a launch, medians of %d: first capture %.0f, tenth %.0f\n", launches,
              median(first), median(tenth));
}

}  // namespace

int main(int argc, char** argv) {
  const int repetitions = argc > 2 ? std::atoi(argv[2]) : 0;
  if (argc != 3 || repetitions <= 0) {
    std::cerr << "usage: pipeline_benchmark PROGRAM REPETITIONS\n";
    return 2;
  }
  try {
    Bench bench(argv[1]);
    bench.launch();
    compare(bench, repetitions);
    compareFirst(bench, std::max(1, repetitions / 2));
  } catch (const std::exception& exception) {
    std::cerr << "pipeline_benchmark: " << exception.what() << '\n';
    return 1;
  }
}

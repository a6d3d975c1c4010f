// Whether random use leaves anything behind: drives the program on a private desktop by its hotkeys, with
// settings and screens that change meanwhile, and compares what it holds with what it held after a while.

#include <linux/input-event-codes.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <thread>

#include "desktop/PrivateDesktop.h"
#include "platform/linux/UserDefaults.h"

namespace {

using lumiscan::testing::PrivateDesktop;
using lumiscan::testing::Process;
using lumiscan::testing::waitUntil;
using Clock = std::chrono::steady_clock;

/// What the program holds. `wakeUps` are those of its main thread in two seconds of rest: each timer that
/// still runs shows there.
struct Footprint {
  long kibibytes = 0, files = 0, threads = 0, windows = 0, wakeUps = 0;
};

void print(const char* when, const Footprint& f) {
  std::printf("%s: %ld KiB of its own, %ld files, %ld threads, %ld X windows, %ld wake-ups in 2 s\n", when,
              f.kibibytes, f.files, f.threads, f.windows, f.wakeUps);
  std::fflush(stdout);
}

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "program_soak: %s\n", what);
  std::exit(EXIT_FAILURE);
}

class Soak {
 public:
  Soak() {
    desktop_.attachTwoMonitors();
    page_.emplace(std::vector<std::string>{"xterm", "-geometry", "60x8+600+300", "-e",
                                           "echo The quick brown fox jumps over 24680; exec sleep 86400"});
    program_.emplace(std::vector<std::string>{LUMISCAN_PROGRAM});
    if (!waitUntil([this] { return desktop_.shortcutIsTaken(); })) fail("the program didn't start");
  }

  /// One random use, at the end of which nobody holds the mouse or the keyboard.
  void use() {
    switch (random_() % 4) {
      case 0:
        changeASetting();
        break;
      case 1:
        desktop_.pressKeys({KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_R});
        break;
      default:
        runSession();
    }
    if (program_->exitStatus()) fail("the program ended");
    if (!waitUntil([this] { return isIdle(); })) fail("an overlay or a grab stayed");
  }

  /// Once it rests.
  Footprint footprint() {
    Footprint now;
    const auto switches = [this] { return status("voluntary_ctxt_switches:"); };
    // What a capture set off, at the latest the end of the result panel, is over when little wakes it up.
    for (int i = 0; i < 30; ++i) {
      const long before = switches();
      std::this_thread::sleep_for(std::chrono::seconds(2));
      now.wakeUps = switches() - before;
      if (now.wakeUps <= restfulWakeUps) break;
    }
    now.kibibytes = status("RssAnon:");
    now.threads = status("Threads:");
    const auto files = std::filesystem::directory_iterator(proc() / "fd");
    now.files = std::distance(begin(files), end(files));
    now.windows = topLevelWindows();
    return now;
  }

  static constexpr long restfulWakeUps = 4;

 private:
  std::filesystem::path proc() const { return "/proc/" + std::to_string(program_->id()); }
  long status(const std::string& name) const {
    std::ifstream stream(proc() / "status");
    long number = 0;
    for (std::string word; stream >> word;)
      if (word == name) stream >> number;
    return number;
  }
  /// Mapped or not.
  long topLevelWindows() const {
    auto* const tree =
        xcb_query_tree_reply(desktop_.x(), xcb_query_tree(desktop_.x(), desktop_.root()), nullptr);
    const long count = tree ? xcb_query_tree_children_length(tree) : 0;
    std::free(tree);
    return count;
  }
  bool isIdle() const { return desktop_.canGrabPointer() && desktop_.canGrabKeyboard(); }

  void changeASetting() {
    constexpr const char* keys[] = {"showHUD", "playSound", "keepLineBreaksByDefault", "additiveEnabled"};
    lumiscan::desktop::FileUserDefaults(lumiscan::desktop::FileUserDefaults::defaultFile())
        .setObject(keys[random_() % std::size(keys)], random_() % 2 == 0);
  }

  void runSession() {
    const std::vector<std::uint8_t> modes[] = {{KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2},
                                               {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_S},
                                               {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_B}};
    desktop_.pressKeys(modes[random_() % std::size(modes)]);
    if (!waitUntil([this] { return !desktop_.canGrabPointer() && !desktop_.canGrabKeyboard(); }))
      fail("a session didn't begin");
    const int x = 600 + static_cast<int>(random_() % 200), y = 300 + static_cast<int>(random_() % 100);
    switch (random_() % 4) {
      case 0:
        desktop_.pressKeys({KEY_ESC});
        break;
      case 1:
        PrivateDesktop::detachMonitor("LEFT");
        if (!waitUntil([this] { return isIdle(); })) fail("a session outlived its screen");
        PrivateDesktop::setMonitor("LEFT", "499/132x600/159+0+100", "none");
        break;
      default:
        desktop_.drag(x, y, x + 200, y + 60);
    }
  }

  PrivateDesktop desktop_;
  std::optional<Process> page_, program_;
  std::mt19937 random_{1};
};

}  // namespace

int main(int argc, char** argv) {
  const int seconds = argc == 3 && std::string(argv[1]) == "--seconds" ? std::atoi(argv[2]) : 0;
  if (seconds <= 0) {
    std::fprintf(stderr, "usage: program_soak --seconds N\n");
    return 2;
  }
  Soak soak;
  int uses = 0;
  const auto useUntil = [&](Clock::time_point end) {
    for (; Clock::now() < end; ++uses) soak.use();
  };
  // The first ones load engines and fill caches.
  const auto start = Clock::now();
  useUntil(start + std::chrono::seconds(std::min(60, std::max(1, seconds / 2))));
  const Footprint before = soak.footprint();
  print("at first", before);
  useUntil(start + std::chrono::seconds(seconds));
  Footprint after;
  // The two threads for tasks come and go, each with a file of its own.
  constexpr long threadsThatComeAndGo = 2, mostGrowth = 8192;
  const bool same = waitUntil([&] {
    after = soak.footprint();
    return after.files <= before.files + threadsThatComeAndGo &&
           after.threads <= before.threads + threadsThatComeAndGo && after.windows <= before.windows &&
           after.wakeUps <= std::max(before.wakeUps, Soak::restfulWakeUps) &&
           after.kibibytes <= before.kibibytes + mostGrowth;
  });
  print("at last", after);
  std::printf("%d uses\n", uses);
  return same ? EXIT_SUCCESS : EXIT_FAILURE;
}

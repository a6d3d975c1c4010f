// What the program costs while it waits: the time of its start, how often it wakes up, the memory that it
// keeps.

#include <linux/input-event-codes.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "TextPage.h"
#include "desktop/BusObject.h"
#include "desktop/PrivateDesktop.h"
#include "desktop/Servers.h"

namespace {

using lumiscan::testing::PrivateDesktop;
using lumiscan::testing::Process;
using lumiscan::testing::waitUntil;
using Clock = std::chrono::steady_clock;

constexpr int starts = 20;
constexpr std::chrono::seconds oneMinute(60);
constexpr std::chrono::milliseconds iconPatience(500);

void require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// The place where tray icons are announced, with a panel that shows them.
class TrayWatcher : public lumiscan::testing::BusObject {
 public:
  explicit TrayWatcher(const std::string& address) : BusObject(address, "tray", "/StatusNotifierWatcher") {
    require(bus().registerService("org.kde.StatusNotifierWatcher"), "no name on the bus");
  }
  std::atomic<int> icons = 0;

 private:
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.member() == "RegisterStatusNotifierItem") ++icons;
    if (message.member() == "Get") {
      const bool isVersion = message.arguments().value(1) == "ProtocolVersion";
      const QVariant value = isVersion ? QVariant(0) : QVariant(true);
      return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(value))));
    }
    return connection.send(message.createReply());
  }
};

/// The number behind a word in a file of the kernel's, which has one a line.
long numberIn(const std::filesystem::path& file, const std::string& word) {
  std::ifstream content(file);
  for (std::string line; std::getline(content, line);)
    if (line.starts_with(word)) return std::stol(line.substr(word.size()));
  return 0;
}

std::string processFolder(const Process& process) { return "/proc/" + std::to_string(process.id()); }

struct Memory {
  double pss = 0;
  double rss = 0;
};

/// In MiB.
Memory memoryOf(const Process& process) {
  const std::string file = processFolder(process) + "/smaps_rollup";
  return {static_cast<double>(numberIn(file, "Pss:")) / 1024,
          static_cast<double>(numberIn(file, "Rss:")) / 1024};
}

/// How often each thread has gone to sleep so far, which is how often it was woken up.
std::map<std::string, long> sleepsOf(const Process& process) {
  std::map<std::string, long> sleeps;
  for (const auto& thread : std::filesystem::directory_iterator(processFolder(process) + "/task"))
    sleeps[thread.path().filename()] = numberIn(thread.path() / "status", "voluntary_ctxt_switches:");
  return sleeps;
}

/// The times that the process wakes up within a minute. A thread that is new counts with all of its own, one
/// that ends with none.
long wakeUpsInAMinute(const Process& process) {
  const auto before = sleepsOf(process);
  std::this_thread::sleep_for(oneMinute);
  long count = 0;
  for (const auto& [thread, sleeps] : sleepsOf(process)) {
    const auto known = before.find(thread);
    count += sleeps - (known == before.end() ? 0 : known->second);
  }
  return count;
}

class Bench {
 public:
  explicit Bench(std::string program) : program_(std::move(program)) {
    lumiscan::showTextPage(desktop_);
    setenv("DBUS_SESSION_BUS_ADDRESS", bus_.address().c_str(), 1);
    watcher_ = std::make_unique<TrayWatcher>(bus_.address());
  }

  struct Start {
    double shortcuts = 0;
    std::optional<double> icon;
  };
  /// In milliseconds from the program's start.
  Start start() {
    end();
    watcher_->icons = 0;
    const auto begin = Clock::now();
    process_ = Process::start({program_});
    Start times;
    const auto patience = std::chrono::seconds(10);
    while (!desktop_.shortcutIsTaken()) {
      require(Clock::now() - begin < patience, "the program doesn't start");
      handleBus();
      if (!times.icon && watcher_->icons > 0) times.icon = millisecondsSince(begin);
    }
    times.shortcuts = millisecondsSince(begin);
    while (!times.icon && Clock::now() - begin < iconPatience) {
      handleBus();
      if (watcher_->icons > 0) times.icon = millisecondsSince(begin);
    }
    return times;
  }

  void end() {
    if (!process_) return;
    process_->signal(SIGTERM);
    require(process_->waitForEnd(handleBus) == 0, "the program doesn't end");
  }

  /// Drags over the whole page; returns when its text is on the clipboard.
  void capture() {
    desktop_.pressKeys({KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2});
    const auto overlays = [this] { return desktop_.windowsOfClass("Lumiscan").size(); };
    require(waitUntil([&] { return overlays() > 0; }), "no overlay");
    desktop_.drag(2, 2, desktop_.width() - 4, desktop_.height() - 4);
    // A page takes its time on a busy machine.
    const auto textIsThere = [] { return PrivateDesktop::clipboard().value_or("").size() > 1000; };
    const auto begin = Clock::now();
    while (!textIsThere()) require(Clock::now() - begin < oneMinute, "no text was read");
  }

  const Process& process() const { return *process_; }

 private:
  static void handleBus() {
    QCoreApplication::processEvents();
    // Each look at the shortcut holds the server up, so there is time for others between two.
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }

  std::string program_;
  PrivateDesktop desktop_;
  lumiscan::testing::PrivateBus bus_;
  std::unique_ptr<TrayWatcher> watcher_;
  std::unique_ptr<Process> process_;
};

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

void measureStart(Bench& bench) {
  std::vector<double> shortcuts;
  std::vector<double> icons;
  for (int i = 0; i < starts; ++i) {
    const Bench::Start times = bench.start();
    shortcuts.push_back(times.shortcuts);
    if (times.icon) icons.push_back(*times.icon);
  }
  std::printf("| start to the shortcuts, median of %d   | %.0f ms |\n", starts, median(shortcuts));
  std::printf("| start to the shortcuts, worst          | %.0f ms |\n", *std::ranges::max_element(shortcuts));
  if (icons.size() < starts) return;
  std::printf("| start to the tray icon, median of %d   | %.0f ms |\n", starts, median(icons));
  std::printf("| start to the tray icon, worst          | %.0f ms |\n", *std::ranges::max_element(icons));
}

/// From a minute after something has happened.
void measureWaiting(const Bench& bench, const char* moment) {
  std::this_thread::sleep_for(oneMinute);
  const Memory memory = memoryOf(bench.process());
  const long wakeUps = wakeUpsInAMinute(bench.process());
  std::printf("| %-16s wake-ups a minute | %ld |\n", moment, wakeUps);
  std::printf("| %-16s PSS, resident set | %.1f, %.1f MiB |\n", moment, memory.pss, memory.rss);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: idle_benchmark PROGRAM\n";
    return 2;
  }
  try {
    const QCoreApplication application(argc, argv);
    Bench bench(argv[1]);
    std::printf("| figure | value |\n|---|---:|\n");
    measureStart(bench);
    measureWaiting(bench, "after the start:");
    bench.capture();
    measureWaiting(bench, "after a page:");
    bench.end();
  } catch (const std::exception& exception) {
    std::cerr << "idle_benchmark: " << exception.what() << '\n';
    return 1;
  }
}

// Whether random use leaves anything behind: compares what the program holds at the end with what it held
// after a while in which everything was used.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "RandomUse.h"
#include "platform/linux/LinuxDesktop.h"

namespace {

using lumiscan::RandomUse;
using lumiscan::testing::Process;
using Clock = std::chrono::steady_clock;

/// What the program holds. `wakeUps` are those of its main thread in two seconds of rest: each timer that
/// still runs shows there. The server's memory shows pictures there that nobody freed.
struct Footprint {
  long kibibytes = 0, serverKibibytes = 0, files = 0, threads = 0, windows = 0, wakeUps = 0;
};
constexpr long restfulWakeUps = 4;

void print(const std::string& when, const Footprint& f) {
  std::printf(
      "%s: %ld KiB of its own, %ld of the X server's, %ld files, %ld threads, %ld X windows, "
      "%ld wake-ups in 2 s\n",
      when.c_str(), f.kibibytes, f.serverKibibytes, f.files, f.threads, f.windows, f.wakeUps);
  std::fflush(stdout);
}

/// The number behind a word in what the kernel says of a process.
long status(const Process& process, const std::string& name) {
  std::ifstream stream("/proc/" + std::to_string(process.id()) + "/status");
  long number = 0;
  for (std::string word; stream >> word;)
    if (word == name) stream >> number;
  return number;
}

/// Mapped or not.
long topLevelWindows(const lumiscan::testing::PrivateDesktop& desktop) {
  auto* const tree = xcb_query_tree_reply(desktop.x(), xcb_query_tree(desktop.x(), desktop.root()), nullptr);
  const long count = tree ? xcb_query_tree_children_length(tree) : 0;
  std::free(tree);
  return count;
}

/// Some 20 seconds after the last capture the program gives the memory back with which it read.
constexpr std::chrono::seconds untilSettled(26);
enum class Rest { brief, settled };

/// Once the program rests.
Footprint footprint(RandomUse& user, Rest rest) {
  user.tidyUp();
  Footprint now;
  const auto switches = [&] { return status(user.program(), "voluntary_ctxt_switches:"); };
  // What a capture set off, at the latest the end of the result panel, is over when little wakes it up.
  for (int i = 0; i < 30; ++i) {
    const long before = switches();
    std::this_thread::sleep_for(std::chrono::seconds(2));
    now.wakeUps = switches() - before;
    if (now.wakeUps <= restfulWakeUps) break;
  }
  if (rest == Rest::settled) std::this_thread::sleep_for(untilSettled);
  now.kibibytes = status(user.program(), "RssAnon:");
  now.serverKibibytes = status(user.desktop().server(), "RssAnon:");
  now.threads = status(user.program(), "Threads:");
  const std::filesystem::directory_iterator files("/proc/" + std::to_string(user.program().id()) + "/fd");
  now.files = std::distance(begin(files), end(files));
  now.windows = topLevelWindows(user.desktop());
  return now;
}

bool isAsBefore(const Footprint& now, const Footprint& before) {
  constexpr long mostGrowth = 8192;
  return now.files <= before.files && now.threads <= before.threads && now.windows <= before.windows &&
         now.wakeUps <= std::max(before.wakeUps, restfulWakeUps) &&
         now.kibibytes <= before.kibibytes + mostGrowth &&
         now.serverKibibytes <= before.serverKibibytes + mostGrowth;
}

/// `duration` is that of the use.
bool soak(std::chrono::seconds duration) {
  constexpr std::chrono::seconds aWhile(60);
  // Of the program with the engines of two languages, where there is no time to see it settle twice.
  constexpr long settledKibibytes = 64 << 10;
  RandomUse user;
  user.useEach();
  int uses = 0;
  const auto useFor = [&](Clock::duration time) {
    for (const auto end = Clock::now() + time; Clock::now() < end; ++uses) user.useAny();
  };
  const bool isShort = duration < 2 * aWhile;
  const auto first = std::min<std::chrono::seconds>(aWhile, duration / 2);
  useFor(first);
  Footprint before = footprint(user, isShort ? Rest::brief : Rest::settled);
  if (isShort) before.kibibytes = settledKibibytes;
  print("after a while", before);
  useFor(duration - first);
  Footprint after;
  // The program gives memory back some time after the last capture.
  const auto patience = Clock::now() + std::chrono::seconds(60);
  do after = footprint(user, Rest::brief);
  while (!isAsBefore(after, before) && Clock::now() < patience);
  print("at last", after);
  std::printf("%d uses\n", uses);
  return isAsBefore(after, before);
}

}  // namespace

int main(int argc, char** argv) {
  const int seconds = argc == 3 && std::string(argv[1]) == "--seconds" ? std::atoi(argv[2]) : 0;
  if (seconds <= 0) {
    std::fprintf(stderr, "usage: program_soak --seconds N\n");
    return 2;
  }
  // Where its log goes when the preferences' file can't be changed at once, which is no reason to end.
  const lumiscan::desktop::LinuxDesktop desktop;
  try {
    return soak(std::chrono::seconds(seconds)) ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "program_soak: %s\n", exception.what());
    return EXIT_FAILURE;
  }
}

// What is left when the program is killed while it stores captures: the last complete state, with every
// capture that was reported. LUMISCAN_KILLS says how often to kill it, 12 times by default.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <thread>

#include "desktop/PrivateDesktop.h"
#include "output/ClipboardService.h"
#include "output/HistoryStore.h"
#include "platform/Application.h"
#include "platform/linux/LinuxDesktop.h"
#include "platform/linux/UserDefaults.h"

namespace lumiscan::testing {
namespace {

/// Stores one capture after the other, each with its number, and reports it, until it is killed or the test
/// has ended.
[[noreturn]] void capture(int report) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  char name[] = "test";
  char* argv[] = {name, nullptr};
  int argc = 1;
  const desktop::LinuxDesktop desktop(argc, argv);
  platform::Application::shared();
  const auto& items = HistoryStore::shared().items();
  for (int number = items.empty() ? 1 : std::stoi(items[0].text) + 1;; ++number) {
    const std::string text = std::to_string(number);
    ClipboardService::appendAdditive(text);
    HistoryStore::shared().add({platform::UUID::random(), platform::Date::now(), CaptureMode::text, text});
    QCoreApplication::processEvents();
    if (write(report, &number, sizeof number) != sizeof number) std::_Exit(EXIT_FAILURE);
  }
}

/// Lets a process capture for a moment that differs each time, and kills it; the last capture it reported.
int captureAndKill(std::chrono::microseconds moment) {
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  const pid_t process = fork();
  if (process == 0) capture(ends[1]);
  close(ends[1]);
  int last = 0;
  // The moment counts from the first capture on.
  if (read(ends[0], &last, sizeof last) != sizeof last) ADD_FAILURE() << "it ended by itself";
  std::this_thread::sleep_for(moment);
  kill(process, SIGKILL);
  for (int number = 0; read(ends[0], &number, sizeof number) == sizeof number;) last = number;
  close(ends[0]);
  waitpid(process, nullptr, 0);
  return last;
}

TEST(Durability, AKilledProgramLeavesTheLastCompleteState) {
  const PrivateDesktop desktop;
  const char* wanted = std::getenv("LUMISCAN_KILLS");
  const int kills = wanted ? std::atoi(wanted) : 12;
  const auto file = desktop::FileUserDefaults::defaultFile();
  std::mt19937 random(1);
  std::uniform_int_distribution<int> microseconds(0, 20000);
  for (int i = 0; i < kills; ++i) {
    const int reported = captureAndKill(std::chrono::microseconds(microseconds(random)));
    const desktop::FileUserDefaults defaults(file);
    const auto stored = defaults.dataForKey("captureHistory");
    ASSERT_TRUE(stored);
    const auto records = decodedCaptureRecords(stored->bytes);
    ASSERT_TRUE(records && !records->empty()) << "a broken history";
    const int newest = std::stoi(records->front().text);
    EXPECT_GE(newest, reported) << "a reported capture is lost";
    for (std::size_t k = 0; k < records->size(); ++k)
      EXPECT_EQ((*records)[k].text, std::to_string(newest - static_cast<int>(k)));
    const std::string buffer = defaults.stringForKey("additiveClipboardBuffer").value_or("");
    const int appended = std::stoi(buffer.substr(buffer.rfind('\n') + 1));
    EXPECT_TRUE(appended == newest || appended == newest + 1) << appended << " and " << newest;
  }
  desktop::FileUserDefaults(file).setBool("flag", true);
  // What the last write replaced goes when the disk has the new version.
  std::vector<std::string> names;
  waitUntil([&] {
    names.clear();
    for (const auto& entry : std::filesystem::directory_iterator(file.parent_path()))
      names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return names.size() == 2;
  });
  EXPECT_EQ(names, (std::vector<std::string>{"preferences.json", "preferences.json.lock"}));
}

}  // namespace
}  // namespace lumiscan::testing

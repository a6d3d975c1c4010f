// What is left when the program is killed while it stores captures: the last complete state, with every
// capture that was reported. LUMISCAN_KILLS says how often to kill it, 12 times by default.

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <thread>

#include "desktop/PrivateDesktop.h"
#include "output/CaptureRecord.h"
#include "platform/linux/UserDefaults.h"

namespace lumiscan::testing {
namespace {

/// Lets a process capture for a moment that differs each time, and kills it; the last capture it reported.
int captureAndKill(std::chrono::microseconds moment) {
  Process process({LUMISCAN_STORE_CAPTURES});
  const auto reports = [&process] { return process.standardOutput(); };
  // The moment counts from the first capture on.
  EXPECT_TRUE(waitUntil([&] { return !reports().empty(); }));
  std::this_thread::sleep_for(moment);
  process.signal(SIGKILL);
  EXPECT_EQ(process.waitForEnd(), 128 + SIGKILL) << "it ended by itself";
  const std::string all = reports();
  return all.empty() ? 0 : std::stoi(all.substr(all.rfind('\n', all.size() - 2) + 1));
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

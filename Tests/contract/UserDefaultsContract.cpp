#include "platform/UserDefaults.h"

#include <gtest/gtest.h>

#include <utility>

#include "ContractDesktop.h"
#include "platform/Dispatch.h"

namespace lumiscan::testing {
namespace {

using platform::Data;
using platform::DefaultsValue;

struct UserDefaultsContract : ::testing::Test {
  /// Of the desktop that is installed now.
  static platform::UserDefaults& defaults() { return platform::UserDefaults::standard(); }

  ContractDesktop desktop;
};

TEST_F(UserDefaultsContract, ValuesKeepTheirTypeAndContentAcrossRestarts) {
  std::string everyByte;
  for (int byte = 0; byte < 256; ++byte) everyByte += static_cast<char>(byte);
  const std::vector<std::pair<std::string, DefaultsValue>> values = {
      {"true", true},
      {"false", false},
      {"one", 1.0},
      {"zero", 0.0},
      {"fraction", -1.5},
      {"large", 1e300},
      {"string", std::string("19,768")},
      {"empty string", std::string()},
      {"other script", std::string("größer 文字\n\"quoted\"")},
      {"list", std::vector<std::string>{"de-DE", "", "en-US"}},
      {"empty list", std::vector<std::string>{}},
      {"data", Data{everyByte}},
      {"empty data", Data{}},
      {"text as data", Data{"19,768"}},
  };
  for (const auto& [key, value] : values) {
    defaults().setObject(key, value);
    defaults().setObject("removed " + key, value);
  }
  for (const char* moment : {"before", "after"}) {
    for (const auto& [key, value] : values)
      EXPECT_EQ(defaults().object(key), value) << key << ' ' << moment << " a restart";
    desktop.restart();
  }
  for (const auto& [key, value] : values) {
    defaults().setObject(key, std::string("replaced"));
    defaults().removeObject("removed " + key);
  }
  defaults().removeObject("never there");
  desktop.restart();
  for (const auto& [key, value] : values) {
    EXPECT_EQ(defaults().object(key), DefaultsValue(std::string("replaced"))) << key;
    EXPECT_EQ(defaults().object("removed " + key), std::nullopt);
  }
}

TEST_F(UserDefaultsContract, BackgroundTasksSeeWhatTheMainThreadWrote) {
  defaults().setObject("languages", std::vector<std::string>{"de-DE"});
  std::optional<std::vector<std::string>> seen;
  platform::Task::detached(platform::TaskPriority::userInitiated,
                           [&seen] { seen = defaults().stringArrayForKey("languages"); });
  desktop.waitForBackgroundTasks();
  EXPECT_EQ(seen, std::vector<std::string>{"de-DE"});
}

}  // namespace
}  // namespace lumiscan::testing

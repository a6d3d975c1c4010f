#pragma once

#include <utility>

#include "contract/DesktopFixture.h"
#include "platform/Dispatch.h"
#include "platform/UserDefaults.h"

namespace lumiscan::testing {

template <typename Fixture>
class UserDefaultsContract : public ContractTest<Fixture> {};
TYPED_TEST_SUITE_P(UserDefaultsContract);

TYPED_TEST_P(UserDefaultsContract, ValuesKeepTheirTypeAndContentAcrossRestarts) {
  using platform::Data;
  using platform::DefaultsValue;
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
  for (const auto& [key, value] : values) platform::UserDefaults::standard().setObject(key, value);
  for (const char* moment : {"before", "after"}) {
    for (const auto& [key, value] : values)
      EXPECT_EQ(platform::UserDefaults::standard().object(key), value) << key << ' ' << moment << " restart";
    this->desktop.restart();
  }
}

TYPED_TEST_P(UserDefaultsContract, TypedReadsGiveNothingForOtherTypes) {
  auto& defaults = platform::UserDefaults::standard();
  defaults.setObject("string", std::string("true"));
  defaults.setObject("data", platform::Data{"bytes"});
  defaults.setObject("number", 2.0);
  defaults.setBool("bool", true);
  EXPECT_EQ(defaults.stringForKey("data"), std::nullopt);
  EXPECT_EQ(defaults.dataForKey("string"), std::nullopt);
  EXPECT_EQ(defaults.stringArrayForKey("string"), std::nullopt);
  EXPECT_EQ(defaults.stringForKey("absent"), std::nullopt);
  EXPECT_EQ(defaults.stringForKey("string"), "true");
  EXPECT_FALSE(defaults.boolForKey("string"));
  EXPECT_FALSE(defaults.boolForKey("absent"));
  EXPECT_TRUE(defaults.boolForKey("number"));
  EXPECT_TRUE(defaults.boolForKey("bool"));
}

TYPED_TEST_P(UserDefaultsContract, WritesReplaceAndRemoveAcrossRestarts) {
  platform::UserDefaults::standard().setObject("replaced", 1.0);
  platform::UserDefaults::standard().setObject("removed", 1.0);
  this->desktop.restart();
  platform::UserDefaults::standard().setObject("replaced", std::string("text"));
  platform::UserDefaults::standard().removeObject("removed");
  platform::UserDefaults::standard().removeObject("never there");
  this->desktop.restart();
  EXPECT_EQ(platform::UserDefaults::standard().stringForKey("replaced"), "text");
  EXPECT_EQ(platform::UserDefaults::standard().object("removed"), std::nullopt);
}

TYPED_TEST_P(UserDefaultsContract, BackgroundTasksSeeWhatTheMainThreadWrote) {
  platform::UserDefaults::standard().setObject("languages", std::vector<std::string>{"de-DE"});
  std::optional<std::vector<std::string>> seen;
  platform::Task::detached(platform::TaskPriority::userInitiated, [&seen] {
    seen = platform::UserDefaults::standard().stringArrayForKey("languages");
  });
  this->desktop.waitForBackgroundTasks();
  EXPECT_EQ(seen, std::vector<std::string>{"de-DE"});
}

REGISTER_TYPED_TEST_SUITE_P(UserDefaultsContract, ValuesKeepTheirTypeAndContentAcrossRestarts,
                            TypedReadsGiveNothingForOtherTypes, WritesReplaceAndRemoveAcrossRestarts,
                            BackgroundTasksSeeWhatTheMainThreadWrote);

}  // namespace lumiscan::testing

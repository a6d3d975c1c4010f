#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "settings/Settings.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {
namespace {

using ::testing::ElementsAre;

class SettingsTest : public ::testing::Test {
 protected:
  testing::SimulatedDesktop desktop;
  int posts = 0;
  const std::shared_ptr<void> observation =
      desktop.notificationCenter().addObserver(std::string(settingsChanged), [this] { ++posts; });
};

TEST_F(SettingsTest, BooleansDefaultToTrueUnlessABooleanOrANumberIsStored) {
  struct Setting {
    std::string_view key;
    bool (*get)();
  };
  struct Case {
    platform::DefaultsValue stored;
    bool value;
  };
  const std::vector<Case> cases = {
      {false, false},
      {true, true},
      {0.0, false},
      {2.0, true},
      {std::string("false"), true},
      {std::vector<std::string>{}, true},
      {platform::Data{}, true},
  };
  for (const Setting& setting :
       {Setting{"playSound", Settings::playSound}, Setting{"showHUD", Settings::showHUD},
        Setting{"keepLineBreaksByDefault", Settings::keepLineBreaksByDefault}}) {
    EXPECT_TRUE(setting.get()) << setting.key;
    for (const Case& each : cases) {
      desktop.userDefaults().setObject(setting.key, each.stored);
      EXPECT_EQ(setting.get(), each.value) << setting.key << " holding type " << each.stored.index();
    }
  }
}

TEST_F(SettingsTest, LanguagesAreKeptInOrderAndNeverEmpty) {
  EXPECT_THAT(Settings::recognitionLanguages(), ElementsAre("en-US"));
  Settings::setRecognitionLanguages({"de-DE", "en-US", "de-DE"});
  EXPECT_THAT(Settings::recognitionLanguages(), ElementsAre("de-DE", "en-US", "de-DE"));
  Settings::setRecognitionLanguages({});
  EXPECT_EQ(desktop.userDefaults().stringArrayForKey("recognitionLanguages"), std::vector<std::string>{});
  EXPECT_THAT(Settings::recognitionLanguages(), ElementsAre("en-US"));
  desktop.userDefaults().setObject("recognitionLanguages", std::string("de-DE"));
  EXPECT_THAT(Settings::recognitionLanguages(), ElementsAre("en-US"));
}

TEST_F(SettingsTest, WritesAreStoredAndThenAnnouncedOnce) {
  std::optional<bool> seen;
  const auto reader = desktop.notificationCenter().addObserver(
      "varnholt.lumiscan.settingsChanged", [&] { seen = Settings::keepLineBreaksByDefault(); });
  Settings::setBool(Settings::keepLineBreaksByDefaultKey, false);
  EXPECT_EQ(seen, false);
  EXPECT_EQ(posts, 1);
  Settings::setRecognitionLanguages({"fr-FR"});
  EXPECT_EQ(posts, 2);
}

}  // namespace
}  // namespace lumiscan

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "output/HUDContentView.h"
#include "output/ResultHUD.h"
#include "settings/Settings.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {
namespace {

using platform::Color;
using platform::Rect;
using ::testing::ElementsAre;
using testing::line;

struct ResultHUDTest : ::testing::Test {
  platform::Window* panel() { return desktop.windows().topmost(); }
  std::string shown() { return panel() ? testing::SimulatedWindows::render(*panel()).content : "nothing"; }

  testing::SimulatedDesktop desktop;
  std::shared_ptr<ResultHUD> hud = std::make_shared<ResultHUD>();
};

TEST_F(ResultHUDTest, ThePanelFloatsUnfocusedWhereTheMouseIs) {
  desktop.displays().attach(2, {{1440, -100}, {1000, 800}}, 2);
  // Characters are 6 points wide, lines 14 high; 16 by 16 is the symbol, 8 the room on either side of the
  // title, 28 and 20 the padding.
  const std::string fifty(50, 'x');
  const std::tuple<platform::Point, std::string, std::optional<std::string>, Rect> cases[] = {
      {{10, 10}, "Copied", std::nullopt, {{600, 852}, {240, 36}}},
      {{10, 10}, "Copied", "", {{600, 852}, {240, 36}}},
      {{10, 10}, "Copied", fifty, {{556, 834}, {328, 54}}},
      {{10, 10}, "Copied", std::string(500, 'x'), {{517, 834}, {406, 54}}},
      {{10, 10}, fifty, std::nullopt, {{540, 852}, {360, 36}}},
      {{10, 10}, fifty + fifty, std::nullopt, {{516, 840}, {408, 48}}},
      {{1440, 0}, "Copied", std::nullopt, {{1820, 652}, {240, 36}}},
      {{1500, 700}, "Copied", std::nullopt, {{600, 852}, {240, 36}}},
  };
  for (const auto& [mouse, title, preview, frame] : cases) {
    desktop.windows().mouseLocation = mouse;
    hud->show(title, preview);
    ASSERT_EQ(desktop.windows().visible().size(), 1U);
    EXPECT_EQ(panel()->frame(), frame) << title << " / " << preview.value_or("none");
  }
  EXPECT_EQ(desktop.windows().keyWindow(), nullptr);
  EXPECT_FALSE(panel()->canBecomeKey());
  EXPECT_EQ(desktop.application().activations, 0);
  EXPECT_TRUE(panel()->attributes().hasShadow);

  desktop.displays().detach(2);
  desktop.displays().detach(1);
  hud->show("No screen");
  EXPECT_EQ(panel()->frame(), (Rect{{600, 852}, {240, 36}}));
}

TEST_F(ResultHUDTest, ThePanelGoesByItselfAndANewOneReplacesIt) {
  hud->show("success");
  desktop.advance(2.04);
  EXPECT_EQ(shown(), "checkmark.circle.fill success") << "1.8 seconds and a fade";
  desktop.advance(0.02);
  EXPECT_EQ(panel(), nullptr);
  hud->show("error", std::nullopt, true);
  desktop.advance(2.84);
  EXPECT_EQ(shown(), "exclamationmark.triangle.fill error") << "2.6 seconds and a fade";
  desktop.advance(0.02);
  EXPECT_EQ(panel(), nullptr);

  hud->show("own", std::nullopt, true, "symbol", 0.5);
  EXPECT_EQ(shown(), "symbol own");
  desktop.advance(0.4);
  hud->show("second");
  EXPECT_EQ(desktop.windows().visible().size(), 1U);
  desktop.advance(1.9);  // Within the second one's fade.
  EXPECT_EQ(panel()->attributes().alphaValue, 0);
  hud->show("third");
  EXPECT_EQ(panel()->attributes().alphaValue, 1);
  desktop.advance(1.7);
  EXPECT_EQ(shown(), "checkmark.circle.fill third");

  Settings::setBool("showHUD", false);
  hud->show("never");
  EXPECT_EQ(shown(), "checkmark.circle.fill third");
  desktop.advance(0.36);
  EXPECT_EQ(panel(), nullptr);

  Settings::setBool("showHUD", true);
  hud->show("last");
  hud = nullptr;
  EXPECT_EQ(panel(), nullptr);
  desktop.advance(5);
}

TEST_F(ResultHUDTest, TheContentIsLaidOutFromTheLeadingEdge) {
  for (const bool dark : {false, true}) {
    desktop.look.isDark = dark;
    hud->show("Title", "pre\nview", dark);
    const auto& look = desktop.look;
    const Color symbol = dark ? Color{0.95, 0.5, 0.25} : look.systemGreen();
    EXPECT_THAT(
        testing::SimulatedWindows::render(*panel()).operations,
        ElementsAre(line("fill", look.panelMaterial(), "240×54 at (0, 0) radius 12 continuous"),
                    line("symbol", symbol, "16×16 at (14, 28):",
                         dark ? "exclamationmark.triangle.fill" : "checkmark.circle.fill"),
                    line("text", look.labelColor(), "system 13 semibold at (38, 29): Title"),
                    line("text", look.secondaryLabelColor(), "system 12 regular at (14, 10): pre view"),
                    line("stroke", look.labelColor().withAlpha(0.08),
                         "1 239×53 at (0.5, 0.5) radius 11.5 continuous")));
  }
}

TEST_F(ResultHUDTest, LongPreviewsKeepTheirStartAndEnd) {
  hud->show("Copied", "start " + std::string(10 << 20, 'x') + " end");
  EXPECT_EQ(shown(), "checkmark.circle.fill Copied / start " + std::string(25, 'x') + "…" +
                         std::string(27, 'x') + " end");
}

}  // namespace
}  // namespace lumiscan

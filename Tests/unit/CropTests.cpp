#include <gtest/gtest.h>

#include <limits>

#include "CaptureDescription.h"
#include "capture/ScreenCaptureController.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {
namespace {

using platform::Rect;

struct CropCase {
  const char* name;
  Rect mainFrame;
  double mainScale;
  Rect frame;  ///< Of the screen that is captured; the main one's frame captures the main screen.
  double scale;
  Rect selection;
  std::string cropped;  ///< "nothing" where there is no image.
};

std::ostream& operator<<(std::ostream& stream, const CropCase& each) { return stream << each.name; }

class CropTest : public ::testing::TestWithParam<CropCase> {};

TEST_P(CropTest, CutsTheSelectionInPixelsOfItsDisplay) {
  const CropCase& each = GetParam();
  testing::SimulatedDesktop desktop;
  desktop.displays().detach(1);
  platform::Screen screen = desktop.displays().attach(1, each.mainFrame, each.mainScale);
  if (!(each.frame == each.mainFrame)) screen = desktop.displays().attach(2, each.frame, each.scale);
  const auto snapshot = desktop.displays().createImage(screen.displayID);
  const auto cropped = ScreenCaptureController::crop(*snapshot, each.selection, screen);
  EXPECT_EQ(cropped ? describe(*cropped) : "nothing", each.cropped);
}

constexpr Rect laptop{{0, 0}, {1440, 900}};
constexpr Rect belowLeft{{-1920, -180}, {1920, 1080}};
constexpr Rect above{{200, 900}, {1920, 1080}};
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

INSTANTIATE_TEST_SUITE_P(
    Screens, CropTest,
    ::testing::Values(
        CropCase{"plain", laptop, 1, laptop, 1, {{100, 200}, {300, 150}}, "100,550 300×150"},
        CropCase{"double", laptop, 2, laptop, 2, {{100, 200}, {300, 150}}, "200,1100 600×300"},
        CropCase{"rounded outwards", laptop, 1.25, laptop, 1.25, {{101, 200}, {33, 21}}, "126,848 42×27"},
        CropCase{"one and a half, left of the main screen",
                 laptop,
                 2,
                 belowLeft,
                 1.5,
                 {{-1800, 0}, {100, 50}},
                 "180,1275 150×75"},
        CropCase{"lower left corner", laptop, 1, belowLeft, 1, {{-1920, -180}, {10, 10}}, "0,1070 10×10"},
        CropCase{"above the main screen", laptop, 2, above, 1, {{210, 1000}, {20, 30}}, "10,950 20×30"},
        CropCase{"top left corner", laptop, 1, above, 2, {{200, 1970}, {10, 10}}, "0,0 20×20"},
        CropCase{"beyond the lower right", laptop, 1, laptop, 1, {{1400, -50}, {100, 100}}, "1400,850 40×50"},
        CropCase{"beyond the upper left", laptop, 2, laptop, 2, {{-10, 890}, {20, 20}}, "0,0 20×20"},
        CropCase{"the smallest that a drag gives", laptop, 1, laptop, 1, {{7, 8}, {6, 6}}, "7,886 6×6"},
        CropCase{"four pixels", laptop, 1, laptop, 1, {{7, 8}, {4, 4}}, "7,888 4×4"},
        CropCase{"four pixels once rounded", laptop, 1, laptop, 1, {{7.5, 8}, {3.1, 4}}, "7,888 4×4"},
        CropCase{"too narrow", laptop, 1, laptop, 1, {{7, 8}, {3, 40}}, "nothing"},
        CropCase{"too low", laptop, 1, laptop, 1, {{7, 8}, {40, 3}}, "nothing"},
        CropCase{"off the display", laptop, 1, laptop, 1, {{2000, 8}, {40, 40}}, "nothing"},
        CropCase{"not a number wide", laptop, 1, laptop, 1, {{7, 8}, {notANumber, 40}}, "nothing"},
        CropCase{"not a number high", laptop, 1, laptop, 1, {{7, 8}, {40, notANumber}}, "nothing"}));

}  // namespace
}  // namespace lumiscan

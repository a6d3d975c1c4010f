#pragma once

#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "capture/ScreenCaptureController.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {

/// Which part of a `coordinateImage` the image is: "x,y width×height" in pixels from the top left.
inline std::string describe(const platform::Image& image) {
  const std::uint32_t first = testing::pixel(image, 0, 0);
  return std::to_string(first & 0xFFF) + "," + std::to_string(first >> 12) + " " +
         std::to_string(image.width()) + "×" + std::to_string(image.height());
}

inline std::string describe(const CaptureOutcome& outcome) {
  if (const auto* captured = std::get_if<outcome::Captured>(&outcome)) return describe(captured->image);
  if (std::holds_alternative<outcome::Cancelled>(outcome)) return "cancelled";
  if (std::holds_alternative<outcome::NoScreenAccess>(outcome)) return "noScreenAccess";
  return "noPreviousSelection";
}

/// A controller whose sessions and repeats note how they end.
struct ControllerFixture : ::testing::Test {
  /// The end appears in `ends` as "name: outcome".
  CaptureCompletion noteEnd(const std::string& name, CaptureMode mode, LineBreaksOverride lineBreaks) {
    return [=, this](const CaptureOutcome& outcome, CaptureMode endMode, LineBreaksOverride endBreaks) {
      EXPECT_TRUE(desktop.dispatcher().isMainThread());
      EXPECT_EQ(endMode, mode);
      EXPECT_EQ(endBreaks, lineBreaks);
      ends.push_back(name + ": " + describe(outcome));
    };
  }
  void begin(const std::string& name = "session", CaptureMode mode = CaptureMode::text,
             LineBreaksOverride lineBreaks = std::nullopt) {
    controller->begin(mode, lineBreaks, noteEnd(name, mode, lineBreaks));
  }
  void drag(platform::Point from = {100, 200}, platform::Point to = {400, 350}) {
    desktop.windows().dragMouse(from, to);
    desktop.settle();
  }

  testing::SimulatedDesktop desktop;
  std::shared_ptr<ScreenCaptureController> controller = std::make_shared<ScreenCaptureController>();
  std::vector<std::string> ends;
};

}  // namespace lumiscan

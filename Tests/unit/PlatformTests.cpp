#include <gtest/gtest.h>

#include "platform/Window.h"
#include "support/SimulatedDesktop.h"

// The platform layer's own code, which is the same on every desktop.

namespace lumiscan::testing {
namespace {

using platform::Rect;

TEST(Image, CroppingSharesThePixels) {
  auto whole = std::optional(coordinateImage(100, 50));
  // A crop of a crop counts from the crop's own origin, and its rows are longer than it is wide.
  const auto part = whole->cropped({{10, 20}, {30, 10}}).value().cropped({{5, 5}, {100, 100}});
  ASSERT_TRUE(part);
  EXPECT_EQ(part->row(0), whole->row(25) + 60);
  whole.reset();
  EXPECT_EQ(part->width(), 25);
  EXPECT_EQ(part->height(), 5);
  EXPECT_EQ(pixel(*part, 0, 0), 25U << 12 | 15U);
  EXPECT_EQ(pixel(*part, 24, 4), 29U << 12 | 39U);
}

/// Drops its window from within every handler, and afterwards looks at its own members.
class DroppingView : public platform::View {
 public:
  DroppingView(std::shared_ptr<platform::Window>& owner, int& handled)
      : View({{0, 0}, {100, 100}}), owner_(owner), handled_(handled) {}
  ~DroppingView() override { marker_ = 0; }

  bool acceptsFirstResponder() const override { return true; }
  void updateTrackingAreas() override {
    addTrackingArea({bounds(), platform::TrackingArea::mouseMoved});
    addTrackingArea({bounds(), platform::TrackingArea::mouseMoved});
  }
  void mouseMoved(const platform::MouseEvent&) override { drop(); }
  void cancelOperation() override { drop(); }

 private:
  void drop() {
    window()->orderOut();
    owner_ = nullptr;
    handled_ += marker_;
  }

  std::shared_ptr<platform::Window>& owner_;
  int& handled_;
  int marker_ = 1;
};

TEST(Window, OutlivesTheHandlersThatDropIt) {
  SimulatedDesktop desktop;
  int handled = 0;
  for (const bool byKey : {false, true}) {
    auto window = std::make_shared<platform::Window>(Rect{{0, 0}, {100, 100}}, platform::windowStyleTitled);
    window->setContentView(std::make_unique<DroppingView>(window, handled));
    window->makeKeyAndOrderFront();
    if (byKey)
      desktop.windows().keyDown(platform::keyCodePeriod, platform::modifierCommand);
    else
      desktop.windows().mouseMove({50, 50});
    EXPECT_EQ(window, nullptr);
  }
  EXPECT_EQ(handled, 2) << "each input reaches the view exactly once";
}

}  // namespace
}  // namespace lumiscan::testing

// Pictures of the screen, compared pixel by pixel with what another client put there.

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <thread>

#include "desktop/PrivateDesktop.h"
#include "platform/Application.h"
#include "platform/Display.h"
#include "platform/Window.h"
#include "platform/linux/LinuxDesktop.h"

namespace lumiscan::testing {
namespace {

class Snapshot : public ::testing::TestWithParam<const char*> {
 protected:
  Snapshot() {
    if (GetParam() == std::string("Compositor")) private_.startCompositor();
    platform::Application::shared();
  }

  std::vector<std::uint32_t> snapshot() {
    const auto image = displays().createImage(displays().mainDisplayID());
    std::vector<std::uint32_t> pixels;
    if (!image) return pixels;
    for (int y = 0; y < image->height(); ++y) {
      const auto* row = reinterpret_cast<const std::uint32_t*>(image->row(y));
      for (int i = 0; i < image->width(); ++i) pixels.push_back(row[i] & 0xFFFFFF);
    }
    return pixels;
  }

  platform::Displays& displays() { return desktop_.displays(); }

  PrivateDesktop private_;
  char name_[5] = "test";
  char* argv_[2] = {name_, nullptr};
  int argc_ = 1;
  desktop::LinuxDesktop desktop_{argc_, argv_};
};

/// Draws a white square, as an overlay draws its crosshair.
class Square : public platform::View {
 public:
  using View::View;
  void draw(platform::GraphicsContext& context, const platform::Rect&) override {
    context.fill(platform::BezierPath::rect({{100, 100}, {50, 50}}), platform::Color::white());
  }
};

TEST_P(Snapshot, IsTheScreenToThePixelAndNothingOfOurs) {
  private_.showPicture();
  const auto picture = private_.screenPixels();
  EXPECT_EQ(snapshot(), picture);

  const auto screen = displays().screens().at(0);
  const auto process = [] { QCoreApplication::processEvents(); };
  const auto insideTheSquare = private_.indexOf(125, private_.height() - 125);
  for (int i = 0; i < 3; ++i) {
    auto overlay = std::make_shared<platform::Window>(screen.frame, platform::windowStyleBorderless);
    overlay->attributes().level = platform::windowLevelScreenSaver + 1;
    overlay->attributes().opaque = false;
    overlay->attributes().backgroundColor = platform::Color::clear();
    overlay->setContentView(std::make_unique<Square>(platform::Rect{{0, 0}, screen.frame.size}));
    overlay->orderFrontRegardless();
    ASSERT_TRUE(waitUntil([&] { return private_.screenPixels()[insideTheSquare] == 0xFFFFFF; }, process));
    // Directly after the overlay has gone, before anything beneath it could paint itself again, and while the
    // compositor, if there is one, is busy with something else.
    private_.pauseCompositor();
    overlay->orderOut();
    std::thread busy([this] {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      private_.resumeCompositor();
    });
    EXPECT_EQ(snapshot(), picture);
    busy.join();
  }
}

INSTANTIATE_TEST_SUITE_P(, Snapshot, ::testing::Values("NoCompositor", "Compositor"),
                         [](const auto& run) { return std::string(run.param); });

TEST_P(Snapshot, OfADisplayThatIsNotThereIsNone) {
  EXPECT_FALSE(displays().createImage(displays().mainDisplayID() + 1).has_value());
}

}  // namespace
}  // namespace lumiscan::testing

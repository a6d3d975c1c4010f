#include "contract/DispatchContract.h"
#include "contract/InputOutputContract.h"
#include "contract/UserDefaultsContract.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan::testing {
namespace {

class SimulatedFixture {
 public:
  void processEvents() { desktop_->runMainQueue(); }
  void passTime(double seconds) { desktop_->advance(seconds); }
  void waitForBackgroundTasks() { desktop_->settle(); }
  void restart() {
    desktop_ = nullptr;
    desktop_ = std::make_unique<SimulatedDesktop>(preferences_);
  }
  std::optional<std::string> pasteboardText() { return desktop_->pasteboard().text; }
  std::optional<platform::CursorShape> pushedCursor() {
    const auto& pushed = desktop_->cursors().pushed;
    return pushed.empty() ? std::nullopt : std::optional(pushed.back());
  }
  void pressKey(std::uint32_t keyCode, std::uint32_t modifiers) {
    desktop_->hotKeys().press(keyCode, modifiers);
    desktop_->settle();
  }
  void takeHotKey(std::uint32_t keyCode, std::uint32_t modifiers) {
    desktop_->hotKeys().takenByOthers.insert({keyCode, modifiers});
  }

 private:
  std::shared_ptr<Preferences> preferences_ = std::make_shared<Preferences>();
  std::unique_ptr<SimulatedDesktop> desktop_ = std::make_unique<SimulatedDesktop>(preferences_);
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Simulated, UserDefaultsContract, SimulatedFixture);
INSTANTIATE_TYPED_TEST_SUITE_P(Simulated, DispatchContract, SimulatedFixture);
INSTANTIATE_TYPED_TEST_SUITE_P(Simulated, InputOutputContract, SimulatedFixture);

}  // namespace lumiscan::testing

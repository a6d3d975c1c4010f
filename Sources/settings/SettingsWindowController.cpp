#include "settings/SettingsWindowController.h"

#include "platform/Application.h"
#include "platform/HostingView.h"
#include "settings/SettingsView.h"

namespace lumiscan {

namespace {

constexpr platform::Rect contentRect{{0, 0}, {520, 560}};

std::shared_ptr<platform::Window> makeWindow() {
  auto window = std::make_shared<platform::Window>(contentRect, platform::windowStyleTitled |
                                                                    platform::windowStyleClosable |
                                                                    platform::windowStyleMiniaturizable);
  window->attributes().title = "Lumiscan Settings";
  window->setContentView(std::make_unique<platform::HostingView>(std::make_unique<SettingsView>()));
  window->center();
  return window;
}

}  // namespace

void SettingsWindowController::show() {
  if (!window_) window_ = makeWindow();
  platform::Application::shared().activateIgnoringOtherApps();
  window_->makeKeyAndOrderFront();
}

}  // namespace lumiscan

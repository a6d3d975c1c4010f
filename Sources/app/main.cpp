#include <cstdlib>
#include <iostream>
#include <memory>

#include "app/AppDelegate.h"
#include "app/CommandLine.h"
#include "platform/Application.h"
#include "platform/linux/LinuxDesktop.h"
#include "selftest/SelfTest.h"

namespace {

int runInteractive(lumiscan::platform::Desktop& desktop) {
  if (const auto problem = desktop.interactiveModeProblem()) {
    std::cerr << "lumiscan: " << *problem << std::endl;
    return EXIT_FAILURE;
  }
  if (!desktop.claimInstance()) return EXIT_SUCCESS;
  auto& application = lumiscan::platform::Application::shared();
  const auto delegate = std::make_shared<lumiscan::AppDelegate>();
  application.setDelegate(delegate.get());
  application.setActivationPolicy(lumiscan::platform::ActivationPolicy::accessory);
  application.run();
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  lumiscan::desktop::LinuxDesktop desktop;
  switch (lumiscan::launchMode({argv, argv + argc})) {
    case lumiscan::LaunchMode::selfTest:
      return lumiscan::SelfTest::run();
    case lumiscan::LaunchMode::permissionProbe:
      return lumiscan::runPermissionProbe();
    case lumiscan::LaunchMode::interactive:
      break;
  }
  return runInteractive(desktop);
}

#include "support/SimulatedDesktop.h"

#include <utility>

namespace lumiscan::testing {

void SimulatedApplication::run() {
  dispatcher_.handleEvent([this] {
    if (delegate) delegate->applicationDidFinishLaunching();
  });
  dispatcher_.settle();
}

SimulatedDesktop::SimulatedDesktop(std::shared_ptr<Preferences> preferences)
    : dispatcher_([this] {
        pasteboard_.publish();
        hotKeys_.releaseUnregistered();
      }),
      userDefaults_(std::move(preferences), effects_) {
  Desktop::install(this);
  displays_.attach(1, {{0, 0}, {1440, 900}});
}

SimulatedDesktop::~SimulatedDesktop() {
  // Work that still waits and singletons may own windows or timers, which need the desktop to go.
  dispatcher_.clear();
  dropSingletons();
  Desktop::install(nullptr);
}

SimulatedApplication& SimulatedDesktop::application() {
  if (!application_) application_ = std::make_unique<SimulatedApplication>(dispatcher_);
  return *application_;
}

}  // namespace lumiscan::testing

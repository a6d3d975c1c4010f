#include "platform/linux/SessionBus.h"

#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "platform/Logger.h"

namespace lumiscan::desktop {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds patience(1);

struct CloseBus {
  // Without a flush, which would wait.
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};

/// Whether a bus was reached and hasn't greeted back in time.
bool sessionBusHangs() {
  sd_bus* opened = nullptr;
  if (sd_bus_open_user(&opened) < 0) return false;
  const std::unique_ptr<sd_bus, CloseBus> bus(opened);
  const auto end = steady_clock::now() + patience;
  while (sd_bus_is_ready(bus.get()) == 0) {
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(end - steady_clock::now());
    if (left.count() <= 0) return true;
    const int processed = sd_bus_process(bus.get(), nullptr);
    if (processed < 0) return false;
    if (processed == 0) sd_bus_wait(bus.get(), static_cast<std::uint64_t>(left.count()));
  }
  return false;
}

}  // namespace

void avoidHangingSessionBus() {
  if (!sessionBusHangs()) return;
  platform::Logger("application").error("the session bus doesn't answer; going without it");
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
}

}  // namespace lumiscan::desktop

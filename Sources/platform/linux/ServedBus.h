#pragma once

#include <systemd/sd-bus.h>

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace lumiscan::desktop {

/// A connection to a message bus that the event loop serves: what comes over it is handled as it comes, and
/// nothing ever waits for the bus. Main thread only.
class ServedBus {
 public:
  /// `opened` is a connection just opened, and this object's from now on.
  explicit ServedBus(sd_bus* opened);
  ServedBus(const ServedBus&) = delete;
  ServedBus& operator=(const ServedBus&) = delete;

  sd_bus* get() const { return bus_.get(); }
  /// Sends what was asked for since the event loop last did.
  void serve();

  /// The bus has let this connection in. Neither function may destroy the object.
  std::function<void()> ready;
  /// The bus has ended the connection, for a reason of errno's numbers. Nothing comes any more.
  std::function<void(int reason)> ended;

 private:
  struct Close {
    // Without a flush, which would wait.
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
  };
  std::unique_ptr<QSocketNotifier> watch(QSocketNotifier::Type type);

  std::unique_ptr<sd_bus, Close> bus_;
  std::unique_ptr<QSocketNotifier> readable_;
  std::unique_ptr<QSocketNotifier> writable_;
  bool isReady_ = false;
};

}  // namespace lumiscan::desktop

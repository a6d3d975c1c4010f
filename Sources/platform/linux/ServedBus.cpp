#include "platform/linux/ServedBus.h"

#include <poll.h>

namespace lumiscan::desktop {

ServedBus::ServedBus(sd_bus* opened)
    : bus_(opened), readable_(watch(QSocketNotifier::Read)), writable_(watch(QSocketNotifier::Write)) {}

std::unique_ptr<QSocketNotifier> ServedBus::watch(QSocketNotifier::Type type) {
  auto notifier = std::make_unique<QSocketNotifier>(sd_bus_get_fd(bus_.get()), type);
  QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] { serve(); });
  return notifier;
}

void ServedBus::serve() {
  int status = 1;
  while (status > 0) status = sd_bus_process(bus_.get(), nullptr);
  // The library's time limits are left alone: an answer that never comes is waited for without waking up.
  readable_->setEnabled(status >= 0);
  writable_->setEnabled(status >= 0 && (sd_bus_get_events(bus_.get()) & POLLOUT) != 0);
  if (status < 0) {
    if (ended) ended(-status);
  } else if (!isReady_ && sd_bus_is_ready(bus_.get()) > 0) {
    isReady_ = true;
    if (ready) ready();
  }
}

}  // namespace lumiscan::desktop

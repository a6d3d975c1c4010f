#include "platform/linux/SessionBus.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>

#include "platform/Logger.h"
#include "platform/linux/ServedBus.h"

namespace lumiscan::desktop {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds patience(1);

const char* const addressVariable = "DBUS_SESSION_BUS_ADDRESS";
/// An address at which there never is a bus.
const char* const noAddress = "disabled:";

/// How long after a bus has ended another one is looked for: soon, since it may just be restarted, and then
/// ever less often.
constexpr std::chrono::milliseconds firstLook(250);
constexpr std::chrono::milliseconds lastLook(32'000);

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

/// Of no other connection of this process. Not connected, with a name that a next one may have, where there
/// is no bus.
QDBusConnection newConnection() {
  static int count = 0;
  return QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                       QStringLiteral("session-%1").arg(++count));
}

}  // namespace

void avoidHangingSessionBus() {
  if (!sessionBusHangs()) return;
  platform::Logger("application").error("the session bus doesn't answer; going without it");
  setenv(addressVariable, noAddress, 1);
}

SessionBus::SessionBus() : connection_(newConnection()) {
  looksAgain_.setSingleShot(true);
  looksAgain_.setInterval(firstLook);
  connect(&looksAgain_, &QTimer::timeout, this, &SessionBus::look);
  follow();
}

SessionBus::~SessionBus() { QDBusConnection::disconnectFromBus(connection_.name()); }

void SessionBus::follow() {
  connection_.connect({}, QStringLiteral("/org/freedesktop/DBus/Local"),
                      QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                      SLOT(connectionEnded()));
  if (connection_.isConnected())
    looksAgain_.setInterval(firstLook);
  else
    lookLater();
}

void SessionBus::connectionEnded() {
  platform::Logger("application").info("the session bus has ended");
  emit changed();
  lookLater();
}

void SessionBus::lookLater() {
  looksAgain_.start();
  looksAgain_.setInterval(std::min(looksAgain_.intervalAsDuration() * 2, lastLook));
}

/// The toolkit would wait for a bus that hangs, and start one where no address is set. So it gets a bus only
/// once that has let somebody in; one that hangs does so when it goes on.
void SessionBus::look() {
  if (qgetenv(addressVariable) == noAddress) return;
  sd_bus* opened = nullptr;
  const int status = sd_bus_open_user(&opened);
  if (status < 0) {
    const bool hasAddress = status != -ENOMEDIUM;
    if (hasAddress) lookLater();
    return;
  }
  tried_ = std::make_unique<ServedBus>(opened);
  tried_->ready = [this] { QMetaObject::invokeMethod(this, &SessionBus::comeBack, Qt::QueuedConnection); };
  tried_->ended = [this](int) { lookLater(); };
  tried_->serve();
}

void SessionBus::comeBack() {
  tried_ = nullptr;
  QDBusConnection::disconnectFromBus(connection_.name());
  connection_ = newConnection();
  follow();
  if (!connection_.isConnected()) return;
  platform::Logger("application").info("there is a session bus again");
  emit changed();
}

}  // namespace lumiscan::desktop

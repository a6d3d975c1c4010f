#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QTimer>
#include <memory>

namespace lumiscan::desktop {

class ServedBus;

/// Keeps this process, and what it starts, off a session bus that is there but hangs: the toolkit would wait
/// for it, half a minute at a time, before the first hotkey is registered. Logs that. Takes a second at the
/// most, and a few milliseconds where the bus answers. Once, before the toolkit is made; main thread.
void avoidHangingSessionBus();

/// The connection to the user's session bus. Where there is no bus, or it has ended, it looks out for one at
/// the same address, without ever waiting for it. Main thread only.
class SessionBus : public QObject {
  Q_OBJECT

 public:
  SessionBus();
  ~SessionBus() override;
  SessionBus(const SessionBus&) = delete;
  SessionBus& operator=(const SessionBus&) = delete;

  /// Not connected while there is no bus. A bus that comes back knows nothing of what was registered before.
  QDBusConnection connection() const { return connection_; }

  /// `connection` has ended, or is a new one.
  Q_SIGNAL void changed();

 private:
  Q_SLOT void connectionEnded();
  void follow();
  void lookLater();
  void look();
  void comeBack();

  QDBusConnection connection_;
  QTimer looksAgain_;
  std::unique_ptr<ServedBus> tried_;  ///< A bus that may be there, until it lets us in.
};

}  // namespace lumiscan::desktop

#pragma once

#include "platform/Sound.h"
#include "platform/linux/ServerWorker.h"

namespace lumiscan::desktop {

/// Our own sounds, which are part of the program, played by libcanberra on the user's sound server. Every
/// word with the server is on a thread of its own.
class CanberraSounds : public platform::Sounds {
 public:
  /// The first sound connects to the server.
  CanberraSounds();
  ~CanberraSounds() override;

  void play(std::string_view name) override;
  /// The sound theme's bell, if the user hears such sounds at all; where there is no theme, a sound of our
  /// own.
  void beep() override;

 private:
  struct Player;

  ServerWorker<Player> player_;
};

}  // namespace lumiscan::desktop

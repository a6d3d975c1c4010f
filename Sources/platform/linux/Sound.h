#pragma once

#include <functional>
#include <memory>

#include "platform/Sound.h"
#include "platform/linux/Worker.h"

namespace lumiscan::desktop {

/// Our own sounds, which are part of the program, played by libcanberra on the user's sound server. Every
/// word with the server is on a thread of its own.
class CanberraSounds : public platform::Sounds {
 public:
  /// Begins to connect to the sound server, so that the first sound isn't late.
  CanberraSounds();
  ~CanberraSounds() override;

  void play(std::string_view name) override;
  /// The sound theme's bell, if the user hears such sounds at all; where there is no theme, a sound of our
  /// own.
  void beep() override;

 private:
  struct Player;

  /// Has the worker do something with the player, a new one if the server keeps the old one waiting.
  void use(std::function<void(Player&)> what);
  void leavePlayer();

  std::shared_ptr<Player> player_;
  std::unique_ptr<Worker> worker_;
};

}  // namespace lumiscan::desktop

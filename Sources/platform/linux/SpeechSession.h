#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <set>

#include "platform/SpeechSynthesizer.h"

namespace lumiscan::desktop {

/// A connection to the speech server and what is spoken over it.
class SpeechSession {
 public:
  SpeechSession();
  ~SpeechSession();
  SpeechSession(const SpeechSession&) = delete;
  SpeechSession& operator=(const SpeechSession&) = delete;

  /// The number of an utterance, which no other of the session has.
  using Ticket = std::uint64_t;

  // Any thread; none of these waits for the server.
  /// Counts an utterance that will be handed to `speak` as queued.
  Ticket announce();
  /// Forgets everything that is announced or spoken.
  void dropAll();
  bool isSpeaking() const;

  // The worker's thread; these wait for the server.
  /// Speaks the utterance, unless it was dropped. Without a server it is dropped.
  void speak(Ticket ticket, const platform::SpeechUtterance& utterance);
  /// Silence, also for what the server has queued.
  void cancel();

 private:
  struct Connection;

  /// The connection, opened again when the server has gone; null while none can be had.
  Connection* connection();
  void drop(Ticket ticket);
  void ended(int message);

  mutable std::mutex mutex_;
  Ticket lastTicket_ = 0;
  std::set<Ticket> announced_;
  std::set<int> spoken_;      ///< Messages that have not ended, by the server's numbers.
  std::set<int> endedEarly_;  ///< Messages that ended before their number was known here.
  std::shared_ptr<Connection> connection_;
};

}  // namespace lumiscan::desktop

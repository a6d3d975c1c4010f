#pragma once

#include <chrono>

#include "platform/SpeechSynthesizer.h"
#include "platform/linux/ServerWorker.h"

namespace lumiscan::desktop {

class SpeechSession;

/// Speaks through speech-dispatcher, which the client library starts when needed. Every word with the server
/// is on a thread of its own; a server that died is connected to anew with the next utterance, one that hangs
/// is left alone, its connection with it.
class SpeechDispatcherSynthesizer : public platform::SpeechSynthesizer {
 public:
  /// How long the server may take for an answer before it counts as hanging. Starting it takes a second or
  /// two.
  explicit SpeechDispatcherSynthesizer(std::chrono::milliseconds serverPatience = std::chrono::seconds(4));
  /// Stops speaking.
  ~SpeechDispatcherSynthesizer() override;

  bool isSpeaking() const override;
  void stopSpeaking() override;
  void speak(const platform::SpeechUtterance& utterance) override;

 private:
  ServerWorker<SpeechSession> session_;
};

}  // namespace lumiscan::desktop

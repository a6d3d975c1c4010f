#pragma once

#include <optional>
#include <string>

namespace lumiscan::platform {

/// A text to speak, at the desktop's default rate, pitch and volume.
struct SpeechUtterance {
  std::string text;  ///< UTF-8.
  /// A BCP 47 identifier, such as "en-US", whose voice is to speak. Where the desktop has none for that very
  /// identifier, one for its language will do; without that, and when absent, it is the default voice.
  std::optional<std::string> language;
};

/// Speaks texts one after the other. Main thread only; no call waits for the speech, nor for anything that
/// the desktop needs for it. A desktop that can't speak drops the utterance, and tries again with the next.
class SpeechSynthesizer {
 public:
  virtual ~SpeechSynthesizer() = default;

  /// That of the installed desktop.
  static SpeechSynthesizer& shared();

  /// Whether an utterance is being spoken or is queued.
  virtual bool isSpeaking() const = 0;
  /// Silence at once, in the middle of a word, and nothing queued any more.
  virtual void stopSpeaking() = 0;
  /// Queues the utterance.
  virtual void speak(const SpeechUtterance& utterance) = 0;
};

}  // namespace lumiscan::platform

#pragma once

#include <optional>
#include <string>

namespace lumiscan {

/// Reads texts aloud, one at a time. Main thread only; nothing here waits for the speech.
class SpeechService {
 public:
  static SpeechService& shared();

  /// Speaks `text` (UTF-8) in place of what is being spoken. `language` is a BCP 47 identifier; absent or
  /// empty leaves the default voice. An empty text does nothing: what is being spoken goes on.
  void speak(const std::string& text, const std::optional<std::string>& language);
  /// Silence at once.
  void stop();
};

}  // namespace lumiscan

#include "recognition/SpeechService.h"

#include "platform/Desktop.h"
#include "platform/SpeechSynthesizer.h"

namespace lumiscan {

SpeechService& SpeechService::shared() { return platform::Desktop::current().singleton<SpeechService>(); }

void SpeechService::speak(const std::string& text, const std::optional<std::string>& language) {
  if (text.empty()) return;
  stop();
  platform::SpeechUtterance utterance{text, std::nullopt};
  if (language && !language->empty()) utterance.language = language;
  platform::SpeechSynthesizer::shared().speak(utterance);
}

void SpeechService::stop() {
  auto& synthesizer = platform::SpeechSynthesizer::shared();
  if (synthesizer.isSpeaking()) synthesizer.stopSpeaking();
}

}  // namespace lumiscan

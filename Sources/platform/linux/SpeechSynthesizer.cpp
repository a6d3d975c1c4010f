#include "platform/linux/SpeechSynthesizer.h"

#include "platform/linux/SpeechSession.h"

namespace lumiscan::desktop {

SpeechDispatcherSynthesizer::SpeechDispatcherSynthesizer(std::chrono::milliseconds serverPatience)
    : session_(serverPatience) {}

SpeechDispatcherSynthesizer::~SpeechDispatcherSynthesizer() { SpeechDispatcherSynthesizer::stopSpeaking(); }

bool SpeechDispatcherSynthesizer::isSpeaking() const {
  return session_.client() && session_.client()->isSpeaking();
}

void SpeechDispatcherSynthesizer::stopSpeaking() {
  if (!session_.client()) return;
  session_.client()->dropAll();
  session_.post([](SpeechSession& session) { session.cancel(); });
}

void SpeechDispatcherSynthesizer::speak(const platform::SpeechUtterance& utterance) {
  if (!session_.start()) return;
  session_.post([ticket = session_.client()->announce(), utterance](SpeechSession& session) {
    session.speak(ticket, utterance);
  });
}

}  // namespace lumiscan::desktop

#include "platform/linux/SpeechSynthesizer.h"

#include <utility>

#include "platform/linux/SpeechSession.h"

namespace lumiscan::desktop {

SpeechDispatcherSynthesizer::SpeechDispatcherSynthesizer(std::chrono::milliseconds serverPatience)
    : serverPatience_(serverPatience) {}

SpeechDispatcherSynthesizer::~SpeechDispatcherSynthesizer() {
  SpeechDispatcherSynthesizer::stopSpeaking();
  leaveSession();
}

void SpeechDispatcherSynthesizer::leaveSession() {
  // Closing it may wait for the server: never here.
  if (worker_) worker_->post([session = std::move(session_)]() mutable { session = nullptr; });
}

void SpeechDispatcherSynthesizer::startAfresh() {
  leaveSession();
  session_ = std::make_shared<SpeechSession>();
  worker_ = std::make_unique<Worker>();
}

bool SpeechDispatcherSynthesizer::isSpeaking() const { return session_ && session_->isSpeaking(); }

void SpeechDispatcherSynthesizer::stopSpeaking() {
  if (!session_) return;
  session_->dropAll();
  worker_->post([session = session_] { session->cancel(); });
}

void SpeechDispatcherSynthesizer::speak(const platform::SpeechUtterance& utterance) {
  if (!worker_ || worker_->hangs(serverPatience_)) {
    if (!Worker::mayBeReplaced()) return;
    startAfresh();
  }
  worker_->post(
      [session = session_, ticket = session_->announce(), utterance] { session->speak(ticket, utterance); });
}

}  // namespace lumiscan::desktop

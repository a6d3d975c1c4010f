#include "platform/linux/SpeechSynthesizer.h"

#include <chrono>
#include <utility>

#include "platform/linux/SpeechSession.h"

namespace lumiscan::desktop {

namespace {

/// How long the server may take for an answer. Starting it takes a second or two.
constexpr std::chrono::milliseconds serverPatience(4000);

}  // namespace

SpeechDispatcherSynthesizer::SpeechDispatcherSynthesizer() = default;

SpeechDispatcherSynthesizer::~SpeechDispatcherSynthesizer() {
  stopSpeaking();
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
  if (!worker_ || worker_->hangs(serverPatience)) startAfresh();
  worker_->post(
      [session = session_, ticket = session_->announce(), utterance] { session->speak(ticket, utterance); });
}

}  // namespace lumiscan::desktop

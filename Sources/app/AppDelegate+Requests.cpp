#include "app/AppDelegate.h"
#include "recognition/OCRService.h"
#include "settings/Settings.h"

namespace lumiscan {

namespace {

constexpr double startHintSeconds = 2.2;

}  // namespace

void AppDelegate::captureText() { startCapture(CaptureMode::text, std::nullopt); }
void AppDelegate::captureTextJoined() { startCapture(CaptureMode::text, false); }
void AppDelegate::captureAndSpeak() { startCapture(CaptureMode::textToSpeech, std::nullopt); }
void AppDelegate::captureBarcode() { startCapture(CaptureMode::barcode, std::nullopt); }

void AppDelegate::captureLastSelection() {
  captureController_->repeatLast(CaptureMode::text, std::nullopt, completion());
}

void AppDelegate::startCapture(CaptureMode mode, LineBreaksOverride lineBreaksOverride) {
  captureController_->begin(mode, lineBreaksOverride, completion());
  if (captureController_->selectionWindows().empty()) return;
  hud_->show("Drag to select an area", "Esc or click cancels", false, "text.magnifyingglass",
             startHintSeconds);
  // Loading a language takes less time than a drag: by the mouse-up the recogniser is warm.
  if (mode != CaptureMode::barcode) OCRService::prepare(Settings::recognitionLanguages());
}

CaptureCompletion AppDelegate::completion() {
  return [weakSelf = weak_from_this()](const CaptureOutcome& outcome, CaptureMode mode,
                                       LineBreaksOverride lineBreaksOverride) {
    if (const auto self = weakSelf.lock()) self->handleOutcome(outcome, mode, lineBreaksOverride);
  };
}

}  // namespace lumiscan

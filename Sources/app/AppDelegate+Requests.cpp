#include "app/AppDelegate.h"
#include "recognition/OCRService.h"
#include "settings/Settings.h"

namespace lumiscan {

void AppDelegate::captureText() { startCapture(CaptureMode::text, std::nullopt); }
void AppDelegate::captureTextJoined() { startCapture(CaptureMode::text, false); }
void AppDelegate::captureBarcode() { startCapture(CaptureMode::barcode, std::nullopt); }

void AppDelegate::startCapture(CaptureMode mode, LineBreaksOverride lineBreaksOverride) {
  captureController_->begin(mode, lineBreaksOverride,
                            [weakSelf = weak_from_this()](const CaptureOutcome& outcome, CaptureMode ended,
                                                          LineBreaksOverride lineBreaks) {
                              if (const auto self = weakSelf.lock())
                                self->handleOutcome(outcome, ended, lineBreaks);
                            });
  if (captureController_->selectionWindows().empty()) return;
  // Loading a language takes less time than a drag: by the mouse-up the recogniser is warm.
  if (mode != CaptureMode::barcode) OCRService::prepare(Settings::recognitionLanguages());
}

}  // namespace lumiscan

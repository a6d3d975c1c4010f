#include <utility>
#include <variant>

#include "app/AppDelegate.h"
#include "capture/ScreenCapturePermissions.h"
#include "output/ClipboardService.h"
#include "platform/Display.h"
#include "recognition/BarcodeService.h"
#include "recognition/OCRService.h"
#include "settings/Settings.h"

namespace lumiscan {

namespace {

std::string joinedByLineFeeds(const std::vector<std::string>& payloads) {
  std::string joined;
  for (std::size_t i = 0; i < payloads.size(); ++i) {
    if (i > 0) joined += '\n';
    joined += payloads[i];
  }
  return joined;
}

}  // namespace

void AppDelegate::handleOutcome(const CaptureOutcome& outcome, CaptureMode mode,
                                LineBreaksOverride lineBreaksOverride) {
  if (const auto* captured = std::get_if<outcome::Captured>(&outcome))
    process(captured->image, mode, lineBreaksOverride);
  else if (std::holds_alternative<outcome::NoScreenAccess>(outcome))
    askForScreenAccess();
}

void AppDelegate::askForScreenAccess() {
  auto& displays = platform::Displays::shared();
  if (!displays.preflightScreenCaptureAccess()) displays.requestScreenCaptureAccess();
  ScreenCapturePermissions::openSystemSettings();
}

void AppDelegate::process(const platform::Image& image, CaptureMode mode,
                          LineBreaksOverride lineBreaksOverride) {
  platform::Task::detached(
      platform::TaskPriority::userInitiated, [weakSelf = weak_from_this(), image, mode, lineBreaksOverride] {
        if (weakSelf.expired()) return;
        std::string text;
        std::vector<std::string> payloads;
        // A failure is to the user what an empty result is.
        if (mode == CaptureMode::barcode)
          payloads = BarcodeService::decode(image).valueOr({});
        else
          text = OCRService::recognizeText(image, Settings::recognitionLanguages()).valueOr("");
        platform::MainQueue::async([weakSelf, mode, lineBreaksOverride, text, payloads] {
          if (const auto self = weakSelf.lock())
            self->finishCapture(mode, lineBreaksOverride, text, payloads);
        });
      });
}

void AppDelegate::finishCapture(CaptureMode mode, LineBreaksOverride lineBreaksOverride, std::string text,
                                const std::vector<std::string>& payloads) {
  if (mode == CaptureMode::barcode) {
    if (!payloads.empty()) ClipboardService::copy(joinedByLineFeeds(payloads));
    return;
  }
  if (text.empty()) return;
  if (!lineBreaksOverride.value_or(Settings::keepLineBreaksByDefault()))
    text = OCRService::collapseLineBreaks(text);
  ClipboardService::copy(text);
}

}  // namespace lumiscan

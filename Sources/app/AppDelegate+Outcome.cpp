#include <utility>
#include <variant>

#include "app/AppDelegate.h"
#include "capture/ScreenCapturePermissions.h"
#include "output/ClipboardService.h"
#include "output/HistoryStore.h"
#include "platform/Display.h"
#include "platform/Sound.h"
#include "platform/UTF8.h"
#include "recognition/BarcodeService.h"
#include "recognition/OCRService.h"
#include "recognition/SpeechService.h"
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

void addToHistory(CaptureMode mode, const std::string& text) {
  HistoryStore::shared().add({platform::UUID::random(), platform::Date::now(), mode, text});
}

void playSound(std::string_view name) {
  if (Settings::playSound()) platform::Sounds::shared().play(name);
}

}  // namespace

void AppDelegate::handleOutcome(const CaptureOutcome& outcome, CaptureMode mode,
                                LineBreaksOverride lineBreaksOverride) {
  if (const auto* captured = std::get_if<outcome::Captured>(&outcome))
    process(captured->image, mode, lineBreaksOverride);
  else if (std::holds_alternative<outcome::NoScreenAccess>(outcome))
    leadToScreenAccess();
  else if (std::holds_alternative<outcome::NoPreviousSelection>(outcome))
    hud_->show("No previous selection yet", std::nullopt, true);
}

void AppDelegate::leadToScreenAccess() {
  auto& displays = platform::Displays::shared();
  if (!displays.preflightScreenCaptureAccess()) displays.requestScreenCaptureAccess();
  ScreenCapturePermissions::openSystemSettings();
  reportFailure("Screen Recording access required",
                "Enable Lumiscan in System Settings › Privacy & Security");
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
        // From here on everything relies on valid text, which a recogniser need not give.
        text = platform::validUTF8(text);
        for (std::string& payload : payloads) payload = platform::validUTF8(payload);
        platform::MainQueue::async([weakSelf, mode, lineBreaksOverride, text, payloads] {
          if (const auto self = weakSelf.lock())
            self->finishCapture(mode, lineBreaksOverride, text, payloads);
        });
      });
}

void AppDelegate::finishCapture(CaptureMode mode, LineBreaksOverride lineBreaksOverride,
                                const std::string& text, const std::vector<std::string>& payloads) {
  if (mode == CaptureMode::barcode)
    finishBarcodes(payloads);
  else
    finishText(mode, lineBreaksOverride, text);
}

void AppDelegate::finishBarcodes(const std::vector<std::string>& payloads) {
  if (payloads.empty()) {
    reportFailure("No QR or barcode found");
    return;
  }
  const std::string joined = joinedByLineFeeds(payloads);
  ClipboardService::copy(joined);
  addToHistory(CaptureMode::barcode, joined);
  report(payloads.size() == 1 ? "Code copied" : "Copied " + std::to_string(payloads.size()) + " codes",
         payloads.front());
}

void AppDelegate::finishText(CaptureMode mode, LineBreaksOverride lineBreaksOverride, std::string text) {
  if (text.empty()) {
    reportFailure("No text recognized");
    return;
  }
  if (!lineBreaksOverride.value_or(Settings::keepLineBreaksByDefault()))
    text = OCRService::collapseLineBreaks(text);
  const bool additive = Settings::additiveEnabled();
  if (additive)
    ClipboardService::appendAdditive(text);
  else
    ClipboardService::copy(text);
  addToHistory(mode, text);
  report(additive ? "Added to additive clipboard" : "Copied", text);
  if (mode == CaptureMode::textToSpeech) {
    const auto languages = Settings::recognitionLanguages();
    SpeechService::shared().speak(text, languages.empty() ? std::nullopt : std::optional(languages.front()));
  }
}

void AppDelegate::report(const std::string& title, const std::string& preview) {
  playSound("Tink");
  hud_->show(title, preview);
}

void AppDelegate::reportFailure(const std::string& title, const std::optional<std::string>& preview) {
  playSound("Basso");
  hud_->show(title, preview, true);
}

}  // namespace lumiscan

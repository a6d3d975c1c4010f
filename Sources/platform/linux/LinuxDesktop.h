#pragma once

#include <memory>

#include "platform/Desktop.h"

namespace lumiscan::desktop {

/// The real desktop: a Linux session with an X server, spoken to through Qt and X11. Constructed on the main
/// thread; installs itself, and takes itself out when it goes.
class LinuxDesktop : public platform::Desktop {
 public:
  LinuxDesktop();
  ~LinuxDesktop() override;

  std::optional<std::string> interactiveModeProblem() override;
  bool claimInstance() override;

  platform::Application& application() override;
  platform::Dispatcher& dispatcher() override;
  platform::Date currentDate() override;
  platform::UserDefaults& userDefaults() override;
  platform::LogSink& logSink() override;
  platform::NotificationCenter& notificationCenter() override;
  platform::NotificationCenter& workspaceNotificationCenter() override;
  platform::Displays& displays() override;
  platform::Point mouseLocation() override;
  platform::CursorStack& cursors() override;
  platform::Pasteboard& pasteboard() override;
  platform::Sounds& sounds() override;
  platform::SpeechSynthesizer& speechSynthesizer() override;
  platform::HotKeys& hotKeys() override;
  platform::LoginItem& loginItem() override;
  platform::Workspace& workspace() override;
  platform::TextRecognizer& textRecognizer() override;
  platform::BarcodeDetector& barcodeDetector() override;
  platform::StatusBar& statusBar() override;
  platform::Alerts& alerts() override;
  platform::Appearance appearance() override;
  platform::Typesetter& typesetter() override;
  std::unique_ptr<platform::WindowPeer> makeWindowPeer(platform::Window& window) override;
  std::unique_ptr<platform::BitmapContext> makeBitmapContext(int width, int height) override;
  std::optional<platform::Image> generateQRCode(std::string_view message,
                                                platform::QRCorrectionLevel level) override;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace lumiscan::desktop

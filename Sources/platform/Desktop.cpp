#include "platform/Desktop.h"

#include <cassert>

#include "platform/Alert.h"
#include "platform/Appearance.h"
#include "platform/Application.h"
#include "platform/BarcodeDetector.h"
#include "platform/BitmapContext.h"
#include "platform/Cursor.h"
#include "platform/Date.h"
#include "platform/Dispatch.h"
#include "platform/Display.h"
#include "platform/Event.h"
#include "platform/HotKeys.h"
#include "platform/Logger.h"
#include "platform/LoginItem.h"
#include "platform/NotificationCenter.h"
#include "platform/Pasteboard.h"
#include "platform/Sound.h"
#include "platform/SpeechSynthesizer.h"
#include "platform/StatusBar.h"
#include "platform/TextRecognizer.h"
#include "platform/Typesetter.h"
#include "platform/UserDefaults.h"
#include "platform/Window.h"
#include "platform/Workspace.h"

namespace lumiscan::platform {

namespace {
Desktop* installed = nullptr;
}

Desktop& Desktop::current() {
  assert(installed);
  return *installed;
}

void Desktop::install(Desktop* desktop) { installed = desktop; }

// The short ways to the installed desktop's parts.

Appearance Appearance::current() { return Desktop::current().appearance(); }
Application& Application::shared() { return Desktop::current().application(); }
BarcodeDetector& BarcodeDetector::shared() { return Desktop::current().barcodeDetector(); }
CursorStack& CursorStack::shared() { return Desktop::current().cursors(); }
Date Date::now() { return Desktop::current().currentDate(); }
Displays& Displays::shared() { return Desktop::current().displays(); }
HotKeys& HotKeys::shared() { return Desktop::current().hotKeys(); }
LoginItem& LoginItem::mainApp() { return Desktop::current().loginItem(); }
NotificationCenter& NotificationCenter::defaultCenter() { return Desktop::current().notificationCenter(); }
NotificationCenter& NotificationCenter::workspaceCenter() {
  return Desktop::current().workspaceNotificationCenter();
}
Pasteboard& Pasteboard::general() { return Desktop::current().pasteboard(); }
Sounds& Sounds::shared() { return Desktop::current().sounds(); }
SpeechSynthesizer& SpeechSynthesizer::shared() { return Desktop::current().speechSynthesizer(); }
StatusBar& StatusBar::system() { return Desktop::current().statusBar(); }
TextRecognizer& TextRecognizer::shared() { return Desktop::current().textRecognizer(); }
Typesetter& Typesetter::shared() { return Desktop::current().typesetter(); }
UserDefaults& UserDefaults::standard() { return Desktop::current().userDefaults(); }
Workspace& Workspace::shared() { return Desktop::current().workspace(); }
Point MouseEvent::mouseLocation() { return Desktop::current().mouseLocation(); }

void Alert::runModal() const { Desktop::current().alerts().runModal(*this); }

std::unique_ptr<BitmapContext> BitmapContext::create(int width, int height) {
  return Desktop::current().makeBitmapContext(width, height);
}

std::optional<Image> generateQRCode(std::string_view message, QRCorrectionLevel level) {
  return Desktop::current().generateQRCode(message, level);
}

void Logger::write(LogLevel level, std::string_view message) const {
  Desktop::current().logSink().write(level, applicationID, category_, message);
}

}  // namespace lumiscan::platform

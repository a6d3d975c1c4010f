// Stores one capture after the other, each with its number, and prints the number when it is stored, until it
// is killed.

#include <QCoreApplication>
#include <iostream>
#include <string>

#include "output/ClipboardService.h"
#include "output/HistoryStore.h"
#include "platform/Application.h"
#include "platform/linux/LinuxDesktop.h"

int main() {
  using namespace lumiscan;
  const desktop::LinuxDesktop desktop;
  platform::Application::shared();
  const auto& items = HistoryStore::shared().items();
  for (int number = items.empty() ? 1 : std::stoi(items[0].text) + 1;; ++number) {
    const std::string text = std::to_string(number);
    ClipboardService::appendAdditive(text);
    HistoryStore::shared().add({platform::UUID::random(), platform::Date::now(), CaptureMode::text, text});
    QCoreApplication::processEvents();
    std::cout << text + '\n' << std::flush;
  }
}

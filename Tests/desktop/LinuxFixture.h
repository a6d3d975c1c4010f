#pragma once

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QCursor>
#include <QGuiApplication>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/PrivateDesktop.h"
#include "platform/Application.h"
#include "platform/Cursor.h"
#include "platform/HotKeys.h"
#include "platform/Image.h"
#include "platform/linux/Dispatch.h"
#include "platform/linux/LinuxDesktop.h"
#include "platform/linux/x11/KeyCodes.h"
#include "platform/linux/x11/ModifierMap.h"

namespace lumiscan::testing {

/// Counts the presses or the releases of a key, repetitions included, that the server sends.
class KeyCounter : public QAbstractNativeEventFilter {
 public:
  KeyCounter(int type, int evdevCode) : type_(type), keycode_(evdevCode + 8) {
    qGuiApp->installNativeEventFilter(this);
  }
  int count = 0;

 private:
  bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
    const auto* event = static_cast<const xcb_key_press_event_t*>(message);
    count += (event->response_type & 0x7F) == type_ && event->detail == keycode_;
    return false;
  }

  const int type_;
  const int keycode_;
};

/// The real desktop on a private screen, in this process. Also the base of test fixtures.
class LinuxFixture {
 public:
  LinuxFixture() { start(); }

  static void processEvents() {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
  }
  /// Waits as `waitUntil` does, handling events meanwhile.
  static bool waitFor(const std::function<bool()>& condition) { return waitUntil(condition, processEvents); }
  void passTime(double seconds) {
    using std::chrono::steady_clock;
    const auto end = steady_clock::now() + std::chrono::duration<double>(seconds);
    while (steady_clock::now() < end) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
  }
  void waitForBackgroundTasks() {
    auto& dispatcher = dynamic_cast<desktop::QtDispatcher&>(desktop_->dispatcher());
    EXPECT_TRUE(dispatcher.waitForTasks(std::chrono::seconds(10)));
    processEvents();
  }
  void end() { desktop_ = nullptr; }
  void restart() {
    end();
    start();
  }
  std::optional<std::string> pasteboardText() { return PrivateDesktop::clipboard(processEvents); }
  std::optional<platform::CursorShape> pushedCursor() {
    const QCursor* cursor = QGuiApplication::overrideCursor();
    if (!cursor) return std::nullopt;
    return cursor->shape() == Qt::CrossCursor ? platform::CursorShape::crosshair
                                              : platform::CursorShape::arrow;
  }
  void pressKey(std::uint32_t keyCode, std::uint32_t modifiers) {
    std::vector<std::uint8_t> keys;
    if (modifiers & platform::cmdKey) keys.push_back(KEY_LEFTMETA);
    if (modifiers & platform::shiftKey) keys.push_back(KEY_LEFTSHIFT);
    if (modifiers & platform::optionKey) keys.push_back(KEY_LEFTALT);
    if (modifiers & platform::controlKey) keys.push_back(KEY_LEFTCTRL);
    keys.push_back(static_cast<std::uint8_t>(*desktop::x11::keycode(keyCode) - 8));
    private_.pressKeys(keys);
    handleWhatTheServerSent();
  }
  /// Returns when everything that the server has sent so far has been handled: a key, grabbed on the
  /// toolkit's connection, comes after it.
  void handleWhatTheServerSent() {
    constexpr std::uint8_t marker = KEY_F20;
    grabKey(qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection(), XCB_MOD_MASK_ANY,
            marker + 8);
    const KeyCounter releases(XCB_KEY_RELEASE, marker);
    private_.pressKeys({marker});
    EXPECT_TRUE(waitFor([&releases] { return releases.count > 0; }));
    processEvents();
  }
  PrivateDesktop& screen() { return private_; }
  const PrivateDesktop& screen() const { return private_; }
  /// How many pixels of an image are others than those of `pixels`, the whole screen's, from `left` and `top`
  /// on.
  int differences(const platform::Image& image, const std::vector<std::uint32_t>& pixels, int left = 0,
                  int top = 0) const {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
      const auto* row = reinterpret_cast<const std::uint32_t*>(image.row(y));
      for (int x = 0; x < image.width(); ++x)
        count += (row[x] & 0xFFFFFF) != pixels[private_.indexOf(left + x, top + y)];
    }
    return count;
  }
  void takeHotKey(std::uint32_t keyCode, std::uint32_t modifiers) {
    grabKey(private_.x(), *desktop::x11::ModifierMap::read(private_.x()).mask(modifiers),
            *desktop::x11::keycode(keyCode));
  }

 private:
  /// Returns when it is grabbed.
  void grabKey(xcb_connection_t* x, std::uint16_t modifiers, xcb_keycode_t key) const {
    const auto request =
        xcb_grab_key_checked(x, 1, private_.root(), modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    EXPECT_EQ(owned(xcb_request_check(x, request)), nullptr);
  }
  void start() {
    desktop_ = std::make_unique<desktop::LinuxDesktop>();
    platform::Application::shared();
  }

  PrivateDesktop private_;
  std::unique_ptr<desktop::LinuxDesktop> desktop_;
};

}  // namespace lumiscan::testing

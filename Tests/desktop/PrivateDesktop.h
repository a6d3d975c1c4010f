#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/Process.h"
#include "support/TemporaryFolder.h"

namespace lumiscan::testing {

/// What a call of the X library returned, freed with this object.
template <typename T>
std::unique_ptr<T, decltype(&std::free)> owned(T* reply) {
  return {reply, &std::free};
}

/// A private X server with a window manager, and a home folder of its own: this process's environment points
/// at them, so that whatever it starts lives there. Everything ends and vanishes with this object.
///
/// Positions are in pixels, origin at the top left of the X screen, y downwards.
class PrivateDesktop {
 public:
  /// The size in pixels is that of the X screen, the depth in bits that of its pixels.
  explicit PrivateDesktop(int width = 1280, int height = 800, int depth = 24);
  ~PrivateDesktop();
  PrivateDesktop(const PrivateDesktop&) = delete;
  PrivateDesktop& operator=(const PrivateDesktop&) = delete;

  /// Divides the screen into two monitors: the primary one, MAIN, and left of it LEFT, which is smaller and
  /// begins lower. Neither has its top left at the screen's.
  void attachTwoMonitors() {
    setMonitor("*MAIN", "780/206x800/212+500+0", "screen");
    setMonitor("LEFT", "499/132x600/159+0+100", "none");
  }
  /// What the user does to a monitor: `geometry` as `xrandr --setmonitor` takes it.
  static void setMonitor(const std::string& name, const std::string& geometry, const std::string& output) {
    changeMonitors({"xrandr", "--setmonitor", name, geometry, output});
  }
  static void detachMonitor(const std::string& name) { changeMonitors({"xrandr", "--delmonitor", name}); }

  /// Another window manager takes the place of the one that runs; returns when it has.
  void restartWindowManager();
  /// Starts a compositing manager; returns when it runs.
  void startCompositor();
  /// Without a compositing manager this does nothing.
  void signalCompositor(int number) const {
    if (compositor_) compositor_->signal(number);
  }
  void endCompositor() { compositor_ = nullptr; }  ///< Without a farewell.

  xcb_connection_t* x() const { return x_; }
  xcb_window_t root() const { return root_; }
  xcb_atom_t atom(const std::string& name) const;
  /// Who holds a selection, the clipboard for example; `XCB_WINDOW_NONE` when nobody does.
  xcb_window_t selectionOwner(const std::string& selection) const;
  const Process& server() const { return *server_; }
  const std::filesystem::path& home() const { return home_.path(); }
  /// Replaces the program's preferences.
  void writePreferences(const std::string& json) const;

  // What a user does, made by the server itself as if it came from the devices. Keys are kernel key codes.
  void pressKeys(const std::vector<std::uint8_t>& evdevCodes);  ///< All held together, then released.
  void keyDown(int evdevCode) { fake(XCB_KEY_PRESS, evdevCode + 8); }
  void keyUp(int evdevCode) { fake(XCB_KEY_RELEASE, evdevCode + 8); }
  void moveMouse(int x, int y) { fake(XCB_MOTION_NOTIFY, 0, x, y); }
  void buttonDown(int button = XCB_BUTTON_INDEX_1) { fake(XCB_BUTTON_PRESS, button); }
  void buttonUp(int button = XCB_BUTTON_INDEX_1) { fake(XCB_BUTTON_RELEASE, button); }
  void click(int x, int y, int button = XCB_BUTTON_INDEX_1) {
    moveMouse(x, y);
    buttonDown(button);
    buttonUp(button);
  }
  void beginDrag(int fromX, int fromY, int toX, int toY) {
    moveMouse(fromX, fromY);
    buttonDown();
    moveMouse((fromX + toX) / 2, (fromY + toY) / 2);
    moveMouse(toX, toY);
  }
  void drag(int fromX, int fromY, int toX, int toY) {
    beginDrag(fromX, fromY, toX, toY);
    buttonUp();
  }

  /// Shows a picture in a window that the window manager leaves alone; returns when it shows. `colorAt` gives
  /// the colour of a pixel, from the picture's top left.
  void showPicture(const xcb_rectangle_t& place,
                   const std::function<std::uint32_t(std::uint32_t x, std::uint32_t y)>& colorAt) const;
  /// Covers the screen with a picture of which no two neighbours are alike.
  void showPicture() const;
  /// A window of ours, not mapped yet. `mask` and `values` are the window's attributes.
  xcb_window_t makeWindow(int x, int y, int width, int height, std::uint32_t mask,
                          const std::uint32_t* values) const;
  /// An empty window of ours that the window manager leaves alone, as a menu is; it is on top.
  xcb_window_t showMenu(int x, int y, int width, int height) const;
  void closeWindow(xcb_window_t window) const;
  // Another program takes the mouse or the keyboard, as an open menu does.
  bool grabPointer() const;  ///< Whether it succeeded, which it doesn't while another client holds it.
  bool grabKeyboard() const;
  void ungrab() const;

  // What a user sees.
  /// The mapped top-level windows of a class, bottom to top.
  std::vector<xcb_window_t> windowsOfClass(const std::string& name) const;
  xcb_window_t focusedWindow() const;
  /// The top-level window that gets the mouse.
  xcb_window_t windowUnderMouse() const;
  /// Whether nobody holds the mouse or the keyboard; whether both are held.
  bool inputIsFree() const { return heldByOthers() == 0; }
  bool inputIsTaken() const { return heldByOthers() == 2; }
  /// Whether some program holds the default shortcut: taking it is refused then. The server serves nobody
  /// else meanwhile, so that this try gets in no program's way.
  bool shortcutIsTaken() const;
  /// All mapped top-level windows, bottom to top.
  std::vector<xcb_window_t> windows() const;
  /// On the screen.
  xcb_rectangle_t geometryOf(xcb_window_t window) const;
  /// Changes whenever another cursor shows.
  std::uint32_t cursorSerial() const;
  /// A part of the screen, a word 0x00RRGGBB a pixel, row by row; or the whole.
  std::vector<std::uint32_t> pixels(int x, int y, int width, int height) const;
  std::vector<std::uint32_t> screenPixels() const { return pixels(0, 0, width_, height_); }
  std::uint32_t pixelAt(int x, int y) const { return pixels(x, y, 1, 1).front(); }
  /// What every property of every window holds, the root window's too.
  std::vector<std::string> windowProperties() const;
  /// Where a pixel of the screen stands in `screenPixels`.
  std::size_t indexOf(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
  }
  int width() const { return width_; }
  int height() const { return height_; }

  /// What another program reads from the clipboard; nothing when it holds no text.
  static std::optional<std::string> clipboard(const std::function<void()>& meanwhile = {});

 private:
  void waitForWindowManager() const;
  static void changeMonitors(const std::vector<std::string>& command);
  int heldByOthers() const;  ///< How many of the mouse and the keyboard.
  void fake(int type, int detail, int x = 0, int y = 0);
  void sync() const;

  TemporaryFolder home_;
  std::unique_ptr<Process> server_;
  std::unique_ptr<Process> windowManager_;
  std::unique_ptr<Process> compositor_;
  xcb_connection_t* x_ = nullptr;
  xcb_window_t root_ = XCB_WINDOW_NONE;
  int width_ = 0;
  int height_ = 0;
};

}  // namespace lumiscan::testing

#include "desktop/PrivateDesktop.h"

#include <linux/input-event-codes.h>
#include <xcb/xfixes.h>
#include <xcb/xtest.h>

#include <cstdlib>
#include <stdexcept>

namespace lumiscan::testing {

namespace {

std::string stringProperty(xcb_connection_t* x, xcb_window_t window, xcb_atom_t property) {
  constexpr std::uint32_t mostWords = 1U << 20;
  const auto request = xcb_get_property(x, 0, window, property, XCB_ATOM_ANY, 0, mostWords);
  const auto reply = owned(xcb_get_property_reply(x, request, nullptr));
  if (!reply) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

bool isMapped(xcb_connection_t* x, xcb_window_t window) {
  const auto reply = owned(xcb_get_window_attributes_reply(x, xcb_get_window_attributes(x, window), nullptr));
  return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::vector<xcb_window_t> childrenOf(xcb_connection_t* x, xcb_window_t window) {
  const auto tree = owned(xcb_query_tree_reply(x, xcb_query_tree(x, window), nullptr));
  if (!tree) return {};
  const xcb_window_t* first = xcb_query_tree_children(tree.get());
  return {first, first + xcb_query_tree_children_length(tree.get())};
}

void require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

}  // namespace

PrivateDesktop::PrivateDesktop(int width, int height, int depth) {
  const std::string folder = home().string();
  unsetenv("WAYLAND_DISPLAY");
  setenv("NO_AT_BRIDGE", "1", 1);  // Whose bus outlives the programs that start it.
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
  setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + folder + "/no-bus").c_str(), 1);
  for (const char* variable : {"HOME", "XDG_RUNTIME_DIR"}) setenv(variable, folder.c_str(), 1);
  setenv("XDG_CONFIG_HOME", (home() / "config").c_str(), 1);

  // With a fixed threshold pictures have memory of their own, which goes back when they are freed: what it
  // holds tells whether some are left.
  server_ =
      Process::start({"env", "MALLOC_MMAP_THRESHOLD_=131072", "Xvfb", "-displayfd", "1", "-screen", "0",
                      std::to_string(width) + "x" + std::to_string(height) + "x" + std::to_string(depth),
                      "-noreset", "-nolisten", "tcp"});
  require(waitUntil([this] { return server_->standardOutput().ends_with('\n'); }), "no X server");
  std::string display = ":";
  display += server_->standardOutput();
  display.pop_back();  // The line feed.
  setenv("DISPLAY", display.c_str(), 1);

  x_ = xcb_connect(nullptr, nullptr);
  require(!xcb_connection_has_error(x_), "no connection to the X server");
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(x_)).data;
  root_ = screen->root;
  owned(xcb_xfixes_query_version_reply(x_, xcb_xfixes_query_version(x_, 2, 0), nullptr));
  width_ = screen->width_in_pixels;
  height_ = screen->height_in_pixels;

  windowManager_ = Process::start({"openbox", "--sm-disable"});
  waitForWindowManager();
}

void PrivateDesktop::writePreferences(const std::string& json) const {
  const auto folder = home() / "config" / "lumiscan";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "preferences.json") << json;
}

void PrivateDesktop::restartWindowManager() {
  const auto old = std::move(windowManager_);
  windowManager_ = Process::start({"openbox", "--sm-disable", "--replace"});
  require(old->waitForEnd().has_value(), "a window manager that stays");
  waitForWindowManager();
}

void PrivateDesktop::waitForWindowManager() const {
  const xcb_atom_t check = atom("_NET_SUPPORTING_WM_CHECK");
  require(waitUntil([&] { return !stringProperty(x_, root_, check).empty(); }), "no window manager");
  // It says that it is there before it is ready, and leaves alone windows that come meanwhile.
  const xcb_window_t probe = makeWindow(0, 0, 1, 1, 0, nullptr);
  require(waitUntil([&] {
            xcb_map_window(x_, probe);
            return isMapped(x_, probe);
          }),
          "a window manager that shows no windows");
  closeWindow(probe);
}

void PrivateDesktop::startCompositor() {
  compositor_ =
      Process::start({"picom", "--backend", "xrender", "--config", "/dev/null", "--no-fading-openclose"});
  require(waitUntil([this] { return selectionOwner("_NET_WM_CM_S0") != XCB_WINDOW_NONE; }),
          "no compositing manager");
}

void PrivateDesktop::changeMonitors(const std::vector<std::string>& command) {
  require(Process(command).waitForEnd() == 0, "no such monitor");
}

void PrivateDesktop::showPicture(
    const xcb_rectangle_t& place,
    const std::function<std::uint32_t(std::uint32_t x, std::uint32_t y)>& colorAt) const {
  const xcb_pixmap_t pixmap = xcb_generate_id(x_);
  xcb_create_pixmap(x_, 24, pixmap, root_, place.width, place.height);
  const xcb_gcontext_t gc = xcb_generate_id(x_);
  xcb_create_gc(x_, gc, pixmap, 0, nullptr);
  std::vector<std::uint32_t> picture;
  for (std::uint32_t y = 0; y < place.height; ++y)
    for (std::uint32_t x = 0; x < place.width; ++x) picture.push_back(colorAt(x, y));
  xcb_put_image(x_, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, gc, place.width, place.height, 0, 0, 0, 24,
                static_cast<std::uint32_t>(4 * picture.size()),
                reinterpret_cast<const std::uint8_t*>(picture.data()));
  const std::uint32_t values[] = {pixmap, 1};
  xcb_map_window(x_, makeWindow(place.x, place.y, place.width, place.height,
                                XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT, values));
  xcb_free_pixmap(x_, pixmap);
  xcb_free_gc(x_, gc);
  require(waitUntil([&] { return pixels(place.x, place.y, place.width, place.height) == picture; }),
          "no picture");
}

void PrivateDesktop::showPicture() const {
  showPicture({0, 0, static_cast<std::uint16_t>(width_), static_cast<std::uint16_t>(height_)},
              [](std::uint32_t x, std::uint32_t y) { return (x * 2654435761U + y * 40503U) & 0xFFFFFF; });
}

xcb_window_t PrivateDesktop::makeWindow(int x, int y, int width, int height, std::uint32_t mask,
                                        const std::uint32_t* values) const {
  const xcb_window_t window = xcb_generate_id(x_);
  xcb_create_window(x_, XCB_COPY_FROM_PARENT, window, root_, static_cast<std::int16_t>(x),
                    static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                    static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    XCB_COPY_FROM_PARENT, mask, values);
  return window;
}

xcb_window_t PrivateDesktop::showMenu(int x, int y, int width, int height) const {
  const std::uint32_t values[] = {0xEEEEEE, 1};
  const xcb_window_t window =
      makeWindow(x, y, width, height, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
  xcb_map_window(x_, window);
  sync();
  return window;
}

void PrivateDesktop::closeWindow(xcb_window_t window) const {
  xcb_destroy_window(x_, window);
  sync();
}

PrivateDesktop::~PrivateDesktop() {
  xcb_disconnect(x_);
  compositor_.reset();
  windowManager_.reset();
  server_.reset();
}

xcb_atom_t PrivateDesktop::atom(const std::string& name) const {
  const auto request = xcb_intern_atom(x_, 0, static_cast<std::uint16_t>(name.size()), name.data());
  return owned(xcb_intern_atom_reply(x_, request, nullptr))->atom;
}

xcb_window_t PrivateDesktop::selectionOwner(const std::string& selection) const {
  const auto request = xcb_get_selection_owner(x_, atom(selection));
  return owned(xcb_get_selection_owner_reply(x_, request, nullptr))->owner;
}

void PrivateDesktop::fake(int type, int detail, int x, int y) {
  xcb_test_fake_input(x_, static_cast<std::uint8_t>(type), static_cast<std::uint8_t>(detail),
                      XCB_TIME_CURRENT_TIME, root_, static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), 0);
  sync();
}

void PrivateDesktop::sync() const { owned(xcb_get_input_focus_reply(x_, xcb_get_input_focus(x_), nullptr)); }

void PrivateDesktop::pressKeys(const std::vector<std::uint8_t>& evdevCodes) {
  for (const auto code : evdevCodes) keyDown(code);
  for (auto code = evdevCodes.rbegin(); code != evdevCodes.rend(); ++code) keyUp(*code);
}

std::vector<xcb_window_t> PrivateDesktop::windows() const {
  std::vector<xcb_window_t> found;
  for (const xcb_window_t window : childrenOf(x_, root_))
    if (isMapped(x_, window)) found.push_back(window);
  return found;
}

std::vector<xcb_window_t> PrivateDesktop::windowsOfClass(const std::string& name) const {
  // WM_CLASS is the instance and the class, each ended by a zero. A managed window is a child of its frame.
  const std::string ending = name + std::string(1, '\0');
  const auto isOfClass = [&](xcb_window_t window) {
    return stringProperty(x_, window, XCB_ATOM_WM_CLASS).ends_with(ending) && isMapped(x_, window);
  };
  std::vector<xcb_window_t> found;
  for (const xcb_window_t top : windows()) {
    if (isOfClass(top)) found.push_back(top);
    for (const xcb_window_t child : childrenOf(x_, top))
      if (isOfClass(child)) found.push_back(child);
  }
  return found;
}

xcb_rectangle_t PrivateDesktop::geometryOf(xcb_window_t window) const {
  const auto geometry = owned(xcb_get_geometry_reply(x_, xcb_get_geometry(x_, window), nullptr));
  require(geometry != nullptr, "no such window");
  return {geometry->x, geometry->y, geometry->width, geometry->height};
}

std::uint32_t PrivateDesktop::cursorSerial() const {
  const auto request = xcb_xfixes_get_cursor_image(x_);
  const auto image = owned(xcb_xfixes_get_cursor_image_reply(x_, request, nullptr));
  require(image != nullptr, "the cursor can't be read");
  return image->cursor_serial;
}

xcb_window_t PrivateDesktop::focusedWindow() const {
  return owned(xcb_get_input_focus_reply(x_, xcb_get_input_focus(x_), nullptr))->focus;
}

xcb_window_t PrivateDesktop::windowUnderMouse() const {
  return owned(xcb_query_pointer_reply(x_, xcb_query_pointer(x_, root_), nullptr))->child;
}

int PrivateDesktop::heldByOthers() const {
  const int held = (grabPointer() ? 0 : 1) + (grabKeyboard() ? 0 : 1);
  ungrab();
  return held;
}

bool PrivateDesktop::grabPointer() const {
  const auto request = xcb_grab_pointer(x_, 0, root_, 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                                        XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_TIME_CURRENT_TIME);
  const auto reply = owned(xcb_grab_pointer_reply(x_, request, nullptr));
  return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

bool PrivateDesktop::grabKeyboard() const {
  const auto request =
      xcb_grab_keyboard(x_, 0, root_, XCB_TIME_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const auto reply = owned(xcb_grab_keyboard_reply(x_, request, nullptr));
  return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

void PrivateDesktop::ungrab() const {
  xcb_ungrab_pointer(x_, XCB_TIME_CURRENT_TIME);
  xcb_ungrab_keyboard(x_, XCB_TIME_CURRENT_TIME);
  sync();
}

std::vector<std::string> PrivateDesktop::windowProperties() const {
  std::vector<std::string> contents;
  std::vector<xcb_window_t> windows{root_};
  for (std::size_t i = 0; i < windows.size(); ++i) {
    const xcb_window_t window = windows[i];
    const auto list = owned(xcb_list_properties_reply(x_, xcb_list_properties(x_, window), nullptr));
    if (!list) continue;  // It has gone.
    const xcb_atom_t* const properties = xcb_list_properties_atoms(list.get());
    for (int k = 0; k < xcb_list_properties_atoms_length(list.get()); ++k)
      contents.push_back(stringProperty(x_, window, properties[k]));
    for (const xcb_window_t child : childrenOf(x_, window)) windows.push_back(child);
  }
  return contents;
}

bool PrivateDesktop::shortcutIsTaken() const {
  constexpr std::uint16_t modifiers = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_4;
  constexpr xcb_keycode_t key = KEY_2 + 8;
  xcb_grab_server(x_);
  const auto request =
      xcb_grab_key_checked(x_, 1, root_, modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const auto refusal = owned(xcb_request_check(x_, request));
  if (!refusal) xcb_ungrab_key(x_, key, root_, modifiers);
  xcb_ungrab_server(x_);
  xcb_flush(x_);
  return refusal != nullptr;
}

std::vector<std::uint32_t> PrivateDesktop::pixels(int x, int y, int width, int height) const {
  const auto request = xcb_get_image(x_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, static_cast<std::int16_t>(x),
                                     static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                                     static_cast<std::uint16_t>(height), ~0U);
  const auto reply = owned(xcb_get_image_reply(x_, request, nullptr));
  require(reply != nullptr, "the screen can't be read");
  const auto* words = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get()));
  std::vector<std::uint32_t> read(words, words + xcb_get_image_data_length(reply.get()) / 4);
  for (std::uint32_t& pixel : read) pixel &= 0xFFFFFF;
  return read;
}

std::optional<std::string> PrivateDesktop::clipboard(const std::function<void()>& meanwhile) {
  Process reader({"xclip", "-selection", "clipboard", "-out"});
  if (reader.waitForEnd(meanwhile) != 0) return std::nullopt;
  return reader.standardOutput();
}

}  // namespace lumiscan::testing

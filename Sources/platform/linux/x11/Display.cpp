#include "platform/linux/x11/Display.h"

#include <xcb/randr.h>

#include <cstring>
#include <thread>

#include "platform/linux/x11/Snapshot.h"

namespace lumiscan::desktop::x11 {

namespace {

std::string atomName(xcb_connection_t* connection, xcb_atom_t atom) {
  const Reply<xcb_get_atom_name_reply_t> answer(
      xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, atom), nullptr));
  if (!answer) return {};
  return {xcb_get_atom_name_name(answer.get()),
          static_cast<std::size_t>(xcb_get_atom_name_name_length(answer.get()))};
}

std::vector<Monitor> monitorsOf(const Connection& connection) {
  std::vector<Monitor> monitors;
  const auto request = xcb_randr_get_monitors(connection.get(), connection.root(), /*get_active=*/1);
  const Reply<xcb_randr_get_monitors_reply_t> answer(
      xcb_randr_get_monitors_reply(connection.get(), request, nullptr));
  if (answer) {
    for (auto i = xcb_randr_get_monitors_monitors_iterator(answer.get()); i.rem;
         xcb_randr_monitor_info_next(&i)) {
      Monitor monitor;
      monitor.name = atomName(connection.get(), i.data->name);
      monitor.pixels = {{double(i.data->x), double(i.data->y)},
                        {double(i.data->width), double(i.data->height)}};
      monitor.isPrimary = i.data->primary;
      monitors.push_back(std::move(monitor));
    }
  }
  if (monitors.empty()) {
    // A server without RandR has the one screen.
    const xcb_screen_t& screen = connection.screen();
    monitors.push_back(
        {"screen", {{0, 0}, {double(screen.width_in_pixels), double(screen.height_in_pixels)}}, true, 1, {}});
  }
  return monitors;
}

}  // namespace

std::shared_ptr<Connection> X11Displays::connection() const {
  const std::lock_guard lock(mutex_);
  if (connection_ && xcb_connection_has_error(connection_->get())) connection_ = nullptr;
  if (!connection_) connection_ = Connection::open();
  return connection_;
}

ScreenLayout X11Displays::layout() const {
  const auto x = connection();
  if (!x) return ScreenLayout({});
  auto monitors = monitorsOf(*x);
  const std::lock_guard lock(mutex_);
  for (Monitor& monitor : monitors) {
    const auto known = toolkitScreens_.find(monitor.name);
    if (known == toolkitScreens_.end()) continue;
    monitor.scale = known->second.scale;
    monitor.workArea = known->second.workArea;
  }
  return ScreenLayout(std::move(monitors));
}

void X11Displays::setToolkitScreens(std::map<std::string, ToolkitScreen> screens) {
  const std::lock_guard lock(mutex_);
  toolkitScreens_ = std::move(screens);
}

std::vector<platform::Screen> X11Displays::screens() const { return layout().screens(); }

platform::DisplayID X11Displays::mainDisplayID() const { return layout().mainDisplayID(); }

platform::Rect X11Displays::bounds(platform::DisplayID display) const { return layout().bounds(display); }

platform::Point X11Displays::mouseLocation() const {
  const auto x = connection();
  if (!x) return {};
  const Reply<xcb_query_pointer_reply_t> pointer(
      xcb_query_pointer_reply(x->get(), xcb_query_pointer(x->get(), x->root()), nullptr));
  if (!pointer) return {};
  return layout().mouseLocation({double(pointer->root_x), double(pointer->root_y)});
}

bool X11Displays::preflightScreenCaptureAccess() {
  const auto x = connection();
  return x && x->isAlive();
}

void X11Displays::requestScreenCaptureAccess() {
  // An X server shows its screen to every client; there is nobody to ask.
}

std::optional<std::uint32_t> X11Displays::pixelColor(platform::DisplayID display, int x, int y) const {
  const auto server = connection();
  const auto pixels = layout().pixels(display);
  if (!server || !pixels) return std::nullopt;
  const auto image =
      takeSnapshot(*server, server->root(), {{pixels->origin.x + x, pixels->origin.y + y}, {1, 1}});
  if (!image) return std::nullopt;
  std::uint32_t color = 0;
  std::memcpy(&color, image->row(0), sizeof color);
  return color & 0xFFFFFF;
}

std::optional<platform::Image> X11Displays::createImage(platform::DisplayID display) {
  if (const auto desktop = frozen(display)) return desktop->image();
  const auto mark = knownMark(display);
  OverlayConcealer* concealer = nullptr;
  std::chrono::steady_clock::time_point since;
  {
    const std::lock_guard lock(mutex_);
    if (overlaysShow_ && mark) concealer = concealer_;
    since = concealer ? std::chrono::steady_clock::now() : overlaysClosedAt_;
  }
  const bool concealed = !concealer || concealer->conceal();
  std::optional<platform::Image> image;
  if (concealed) {
    if (mark) waitForRepaint(display, *mark, since);
    const auto server = connection();
    const auto pixels = layout().pixels(display);
    if (server && pixels) image = takeSnapshot(*server, server->root(), *pixels);
  }
  if (concealer) concealer->reveal();
  // Frozen meanwhile, since an overlay was about to be painted.
  if (const auto desktop = frozen(display)) return desktop->image();
  return image;
}

void X11Displays::waitForRepaint(platform::DisplayID display, const Mark& mark,
                                 std::chrono::steady_clock::time_point since) const {
  // A ground that has changed meanwhile never comes back: then the time itself must do.
  constexpr auto longestRepaint = std::chrono::milliseconds(300);
  constexpr auto betweenLooks = std::chrono::milliseconds(2);
  while (std::chrono::steady_clock::now() < since + longestRepaint &&
         pixelColor(display, mark.x, mark.y) != mark.ground)
    std::this_thread::sleep_for(betweenLooks);
}

std::shared_ptr<const FrozenDesktop> X11Displays::frozen(platform::DisplayID display) const {
  const std::lock_guard lock(mutex_);
  const auto found = frozen_.find(display);
  return found == frozen_.end() ? nullptr : found->second;
}

std::optional<Mark> X11Displays::knownMark(platform::DisplayID display) const {
  const std::lock_guard lock(mutex_);
  const auto found = marks_.find(display);
  return found == marks_.end() ? std::nullopt : std::optional(found->second);
}

OverlayGround X11Displays::overlayOpens(platform::DisplayID display) {
  OverlayGround ground;
  const auto server = connection();
  if (!server) return ground;
  // A session that follows at once finds the last one's overlays still on the screen: it goes on with what
  // was there before them.
  if (hasCompositor(server->get())) {
    ground.mark = knownMark(display);
    if (!ground.mark) ground.mark = placeMark(display);
  } else {
    ground.frozenDesktop = frozen(display);
    if (ground.frozenDesktop && ground.frozenDesktop->isLost()) ground.frozenDesktop = nullptr;
    ground.isToBeFrozen = !ground.frozenDesktop;
  }
  const std::lock_guard lock(mutex_);
  overlaysShow_ = true;
  return ground;
}

std::optional<Mark> X11Displays::placeMark(platform::DisplayID display) {
  const auto pixels = layout().pixels(display);
  if (!pixels) return std::nullopt;
  // At the middle of the right edge, where the fewest desktops have something that moves.
  Mark mark{static_cast<int>(pixels->size.width) - 1, static_cast<int>(pixels->size.height) / 2, 0, 0};
  const auto color = pixelColor(display, mark.x, mark.y);
  if (!color) return std::nullopt;
  mark.ground = *color;
  mark.color = *color ^ 1;
  const std::lock_guard lock(mutex_);
  marks_.insert_or_assign(display, mark);
  return mark;
}

std::shared_ptr<const FrozenDesktop> X11Displays::freeze(platform::DisplayID display) {
  const auto server = connection();
  const auto pixels = layout().pixels(display);
  if (!server || !pixels) return nullptr;
  auto desktop = std::make_shared<const FrozenDesktop>(server, *pixels);
  const std::lock_guard lock(mutex_);
  frozen_.insert_or_assign(display, desktop);
  return desktop;
}

void X11Displays::setConcealer(OverlayConcealer* concealer) {
  const std::lock_guard lock(mutex_);
  concealer_ = concealer;
}

void X11Displays::overlaysClosed() {
  const std::lock_guard lock(mutex_);
  overlaysShow_ = false;
  overlaysClosedAt_ = std::chrono::steady_clock::now();
}

void X11Displays::screensChanged() {
  const ScreenLayout now = layout();
  const std::lock_guard lock(mutex_);
  std::erase_if(frozen_,
                [&](const auto& entry) { return now.pixels(entry.first) != entry.second->pixels(); });
}

void X11Displays::thaw() {
  const std::lock_guard lock(mutex_);
  frozen_.clear();
  marks_.clear();
}

}  // namespace lumiscan::desktop::x11

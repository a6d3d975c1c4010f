#include "platform/linux/x11/TrayWindow.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/StatusIcon.h"
#include "platform/linux/x11/Visual.h"

namespace lumiscan::desktop::x11 {

namespace {

constexpr std::uint8_t translucentDepth = 32;
constexpr std::uint32_t requestDock = 0;
constexpr std::uint32_t embedVersion = 0;
constexpr std::uint32_t embedMapped = 1;
/// What trays take an icon's side to be when they have no opinion. In points.
constexpr double usualSide = 22;
/// How long after it has moved an icon a panel may take to paint its ground: most do at once, a session that
/// only begins is slow.
constexpr std::chrono::milliseconds soon(300);
constexpr std::chrono::milliseconds late(3000);

Reply<xcb_get_image_reply_t> readImage(xcb_connection_t* x, xcb_drawable_t drawable, const QRect& rect) {
  const auto request =
      xcb_get_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, static_cast<std::int16_t>(rect.x()),
                    static_cast<std::int16_t>(rect.y()), static_cast<std::uint16_t>(rect.width()),
                    static_cast<std::uint16_t>(rect.height()), ~0U);
  return Reply<xcb_get_image_reply_t>(xcb_get_image_reply(x, request, nullptr));
}

/// The part of a drawable; an empty image where that can't be read.
QImage imageOf(xcb_connection_t* x, xcb_drawable_t drawable, const QRect& rect) {
  const auto reply = readImage(x, drawable, rect);
  QImage image(rect.size(), QImage::Format_RGB32);
  if (!reply || xcb_get_image_data_length(reply.get()) != image.sizeInBytes()) return {};
  std::memcpy(image.bits(), xcb_get_image_data(reply.get()), static_cast<std::size_t>(image.sizeInBytes()));
  return image;
}

}  // namespace

TrayWindow::TrayWindow() : connection_(Connection::open()) {
  if (!connection_) return;
  x_ = connection_->get();
  constexpr std::string_view names[atomCount] = {"_NET_SYSTEM_TRAY_S0",
                                                 "_NET_SYSTEM_TRAY_OPCODE",
                                                 "_NET_SYSTEM_TRAY_VISUAL",
                                                 "_NET_SYSTEM_TRAY_COLORS",
                                                 "_XEMBED_INFO",
                                                 "MANAGER"};
  for (int i = 0; i < atomCount; ++i) atoms_[i] = atom(x_, names[i]);
  // A new tray announces itself to the root window's structure listeners.
  const std::uint32_t structure = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(x_, connection_->root(), XCB_CW_EVENT_MASK, &structure);
  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(x_), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { handleEvents(); });
  again_.setSingleShot(true);
  QObject::connect(&again_, &QTimer::timeout, &again_, [this] {
    if (again_.intervalAsDuration() == soon) again_.start(late);
    repaint();
  });
  findTray();
}

TrayWindow::~TrayWindow() { undock(); }

void TrayWindow::findTray() {
  // The tray must not go between the two requests, or its end would never be told.
  const ServerGrab grab(x_);
  tray_ = selectionOwner(x_, atoms_[atomTray]);
  if (hasTray()) {
    const std::uint32_t structure = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(x_, tray_, XCB_CW_EVENT_MASK, &structure);
  }
}

std::optional<std::uint32_t> TrayWindow::trayProperty(Atom name, std::uint32_t offset) const {
  const auto request = xcb_get_property(x_, 0, tray_, atoms_[name], XCB_ATOM_ANY, offset, 1);
  const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x_, request, nullptr));
  if (!reply || reply->format != 32 || reply->value_len == 0) return std::nullopt;
  return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
}

void TrayWindow::dock(double scale) {
  if (!hasTray() || window_ != XCB_WINDOW_NONE) return;
  const xcb_visualid_t translucent = visualOfDepth(connection_->screen(), translucentDepth);
  const bool wantsTranslucent = translucent != 0 && trayProperty(atomVisual) == translucent;
  depth_ = wantsTranslucent ? translucentDepth : connection_->screen().root_depth;
  const auto side = static_cast<std::uint16_t>(std::lround(usualSide * scale));
  size_ = {side, side};
  create(wantsTranslucent ? translucent : connection_->screen().root_visual);
  askToBeDocked();
  xcb_flush(x_);
  // Answers that were waited for may have brought events along.
  handleEvents();
}

void TrayWindow::create(xcb_visualid_t visual) {
  // As long as the window: trays give theirs the same.
  colormap_ = xcb_generate_id(x_);
  xcb_create_colormap(x_, XCB_COLORMAP_ALLOC_NONE, colormap_, connection_->root(), visual);
  xcb_create_window_value_list_t values{};
  values.background_pixmap = XCB_BACK_PIXMAP_PARENT_RELATIVE;
  values.background_pixel = 0;
  values.event_mask = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                      XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW;
  values.colormap = colormap_;
  window_ = xcb_generate_id(x_);
  xcb_create_window_aux(x_, depth_, window_, connection_->root(), 0, 0,
                        static_cast<std::uint16_t>(size_.width()), static_cast<std::uint16_t>(size_.height()),
                        0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                        (depth_ == translucentDepth ? XCB_CW_BACK_PIXEL : XCB_CW_BACK_PIXMAP) |
                            XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                        &values);
  gc_ = xcb_generate_id(x_);
  xcb_create_gc(x_, gc_, window_, 0, nullptr);
}

void TrayWindow::askToBeDocked() {
  constexpr std::string_view name = "Lumiscan";
  constexpr std::string_view instanceAndClass{"lumiscan\0LumiscanTray\0", 22};
  xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, name.size(),
                      name.data());
  xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                      instanceAndClass.size(), instanceAndClass.data());
  // Of the size hints only the smallest size.
  constexpr std::uint32_t hasMinimum = 16, minimumWidth = 5, minimumHeight = 6, hintCount = 18;
  std::array<std::uint32_t, hintCount> hints{hasMinimum};
  hints[minimumWidth] = static_cast<std::uint32_t>(size_.width());
  hints[minimumHeight] = static_cast<std::uint32_t>(size_.height());
  xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS,
                      32, hintCount, hints.data());
  const std::uint32_t info[] = {embedVersion, embedMapped};
  xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window_, atoms_[atomXEmbedInfo], atoms_[atomXEmbedInfo], 32,
                      2, info);
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = tray_;
  message.type = atoms_[atomOpcode];
  message.data.data32[0] = XCB_CURRENT_TIME;
  message.data.data32[1] = requestDock;
  message.data.data32[2] = window_;
  xcb_send_event(x_, 0, tray_, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
}

void TrayWindow::undock() {
  if (window_ == XCB_WINDOW_NONE) return;
  xcb_free_gc(x_, gc_);
  xcb_destroy_window(x_, window_);
  xcb_free_colormap(x_, colormap_);
  xcb_flush(x_);
  window_ = XCB_WINDOW_NONE;
  again_.stop();
  if (hovered) hovered(false);
}

void TrayWindow::repaint() {
  if (window_ == XCB_WINDOW_NONE) return;
  paint();
  handleEvents();
}

void TrayWindow::handleEvents() {
  while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(x_)}) handle(*event);
  // The end of the server is the toolkit's to notice; nothing comes here any more.
  if (xcb_connection_has_error(x_)) notifier_->setEnabled(false);
}

void TrayWindow::handle(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7F) {
    case XCB_CLIENT_MESSAGE: {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
      if (message.type != atoms_[atomManager] || message.data.data32[1] != atoms_[atomTray]) break;
      undock();
      findTray();
      if (trayChanged) trayChanged();
      break;
    }
    case XCB_DESTROY_NOTIFY: {
      if (reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window != tray_) break;
      // The server has put the window back onto the desktop, where it must not stay.
      undock();
      findTray();
      if (trayChanged) trayChanged();
      break;
    }
    case XCB_CONFIGURE_NOTIFY: {
      const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
      if (change.window != window_) break;
      size_ = {change.width, change.height};
      paintAndAgain();
      break;
    }
    case XCB_EXPOSE: {
      const auto& exposure = reinterpret_cast<const xcb_expose_event_t&>(event);
      if (exposure.window == window_ && exposure.count == 0) paintAndAgain();
      break;
    }
    case XCB_BUTTON_PRESS:
      press(reinterpret_cast<const xcb_button_press_event_t&>(event));
      break;
    case XCB_ENTER_NOTIFY:
    case XCB_LEAVE_NOTIFY:
      if (hovered) hovered((event.response_type & 0x7F) == XCB_ENTER_NOTIFY);
      break;
    default:
      break;
  }
}

void TrayWindow::press(const xcb_button_press_event_t& event) {
  if (event.detail != XCB_BUTTON_INDEX_1 && event.detail != XCB_BUTTON_INDEX_3) return;
  // The press has given us the mouse until its release; a menu needs it now.
  xcb_ungrab_pointer(x_, event.time);
  connection_->isAlive();  // Waits until the server has done that.
  if (pressed) pressed(QRect(QPoint(-event.event_x, -event.event_y), size_));
}

void TrayWindow::paintAndAgain() {
  again_.start(soon);
  paint();
}

void TrayWindow::paint() {
  const int side = std::min(size_.width(), size_.height());
  if (window_ == XCB_WINDOW_NONE || side <= 0 || !picture) return;
  QImage image;
  if (depth_ == translucentDepth) {
    image = QImage(size_, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
  } else {
    image = ground();
  }
  QPainter painter(&image);
  painter.drawImage((size_.width() - side) / 2, (size_.height() - side) / 2, picture(side, foreground()));
  painter.end();
  xcb_put_image(x_, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, gc_, static_cast<std::uint16_t>(image.width()),
                static_cast<std::uint16_t>(image.height()), 0, 0, 0, depth_,
                static_cast<std::uint32_t>(image.sizeInBytes()), image.constBits());
  xcb_flush(x_);
}

QImage TrayWindow::ground() const {
  xcb_clear_area(x_, 0, window_, 0, 0, 0, 0);
  QImage image = imageOf(x_, window_, QRect(QPoint(0, 0), size_));
  if (!image.isNull()) return image;
  image = QImage(size_, QImage::Format_RGB32);
  image.fill(Qt::black);
  return image;
}

QColor TrayWindow::foreground() const {
  const auto red = trayProperty(atomColors, 0);
  const auto green = trayProperty(atomColors, 1);
  const auto blue = trayProperty(atomColors, 2);
  // 16 bits each.
  if (red && green && blue)
    return {static_cast<int>(*red >> 8 & 0xFF), static_cast<int>(*green >> 8 & 0xFF),
            static_cast<int>(*blue >> 8 & 0xFF)};
  return iconColor(isOnDark());
}

bool TrayWindow::isOnDark() const {
  const Reply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
      x_, xcb_translate_coordinates(x_, window_, connection_->root(), 0, 0), nullptr));
  if (!place) return true;
  const QRect screen(0, 0, connection_->screen().width_in_pixels, connection_->screen().height_in_pixels);
  const QRect window(QPoint(place->dst_x, place->dst_y), size_);
  const QRect around = window.adjusted(-1, -1, 1, 1) & screen;
  if (around.isEmpty()) return true;
  const QImage image = imageOf(x_, connection_->root(), around);
  std::vector<int> lightness;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (!window.contains(around.topLeft() + QPoint(x, y))) lightness.push_back(qGray(image.pixel(x, y)));
  if (lightness.empty()) return true;
  const auto middle = lightness.begin() + static_cast<std::ptrdiff_t>(lightness.size() / 2);
  std::nth_element(lightness.begin(), middle, lightness.end());
  return *middle < 128;
}

}  // namespace lumiscan::desktop::x11

#include "platform/linux/PanelWindow.h"

#include <xcb/xfixes.h>

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Visual.h"

namespace lumiscan::desktop {

namespace {

/// For each row, from where to where the picture has ink: the shape of a picture without holes.
std::vector<xcb_rectangle_t> inkRows(const QImage& picture) {
  std::vector<xcb_rectangle_t> rows;
  for (int y = 0; y < picture.height(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
    const auto* end = row + picture.width();
    const auto hasInk = [](QRgb pixel) { return qAlpha(pixel) != 0; };
    const auto* first = std::find_if(row, end, hasInk);
    if (first == end) continue;
    const auto* last = end;
    while (!hasInk(last[-1])) --last;
    rows.push_back({static_cast<std::int16_t>(first - row), static_cast<std::int16_t>(y),
                    static_cast<std::uint16_t>(last - first), 1});
  }
  return rows;
}

}  // namespace

PanelWindow::PanelWindow(xcb_connection_t* connection, const QRect& pixels, QImage picture,
                         const std::string& windowClass)
    : connection_(connection),
      pixels_(pixels),
      picture_(std::move(picture)),
      window_(xcb_generate_id(connection)),
      gc_(xcb_generate_id(connection)) {
  const xcb_screen_t& screen = x11::screenOf(connection);
  create(screen);
  describe(windowClass);
  letTheMouseThrough();
  if (isTranslucent()) return;
  takeShapeOf(picture_);
  readGround(screen.root);
}

PanelWindow::~PanelWindow() {
  xcb_free_gc(connection_, gc_);
  xcb_destroy_window(connection_, window_);
  xcb_flush(connection_);
}

void PanelWindow::create(const xcb_screen_t& screen) {
  xcb_visualid_t visual = screen.root_visual;
  depth_ = screen.root_depth;
  const auto withAlpha = x11::visualOfDepth(screen, translucentDepth);
  if (withAlpha != 0 && x11::hasCompositor(connection_)) {
    visual = withAlpha;
    depth_ = translucentDepth;
  }
  const xcb_colormap_t colormap = xcb_generate_id(connection_);
  xcb_create_colormap(connection_, XCB_COLORMAP_ALLOC_NONE, colormap, screen.root, visual);
  xcb_create_window_value_list_t values{};
  // Until the picture is painted the window shows what is behind it: transparent, or nothing at all.
  values.background_pixmap = XCB_BACK_PIXMAP_NONE;
  values.background_pixel = 0;
  values.override_redirect = 1;
  values.event_mask = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_VISIBILITY_CHANGE;
  values.colormap = colormap;
  xcb_create_window_aux(connection_, depth_, window_, screen.root, static_cast<std::int16_t>(pixels_.x()),
                        static_cast<std::int16_t>(pixels_.y()), static_cast<std::uint16_t>(pixels_.width()),
                        static_cast<std::uint16_t>(pixels_.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                        visual,
                        (isTranslucent() ? XCB_CW_BACK_PIXEL : XCB_CW_BACK_PIXMAP) | XCB_CW_BORDER_PIXEL |
                            XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                        &values);
  xcb_free_colormap(connection_, colormap);
  xcb_create_gc(connection_, gc_, window_, 0, nullptr);
}

void PanelWindow::describe(const std::string& windowClass) {
  const std::string instanceAndClass = "panel" + std::string(1, '\0') + windowClass + std::string(1, '\0');
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(instanceAndClass.size()), instanceAndClass.data());
  const xcb_atom_t type = x11::atom(connection_, "_NET_WM_WINDOW_TYPE_NOTIFICATION");
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_,
                      x11::atom(connection_, "_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1, &type);
  // A compositor's own shadow would be that of a rectangle.
  const std::uint32_t no = 0;
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, x11::atom(connection_, "_COMPTON_SHADOW"),
                      XCB_ATOM_CARDINAL, 32, 1, &no);
}

void PanelWindow::letTheMouseThrough() {
  const xcb_xfixes_region_t nothing = xcb_generate_id(connection_);
  xcb_xfixes_create_region(connection_, nothing, 0, nullptr);
  xcb_xfixes_set_window_shape_region(connection_, window_, XCB_SHAPE_SK_INPUT, 0, 0, nothing);
  xcb_xfixes_destroy_region(connection_, nothing);
}

void PanelWindow::takeShapeOf(const QImage& picture) {
  const auto rows = inkRows(picture);
  const xcb_xfixes_region_t shape = xcb_generate_id(connection_);
  xcb_xfixes_create_region(connection_, shape, static_cast<std::uint32_t>(rows.size()), rows.data());
  xcb_xfixes_set_window_shape_region(connection_, window_, XCB_SHAPE_SK_BOUNDING, 0, 0, shape);
  xcb_xfixes_destroy_region(connection_, shape);
}

void PanelWindow::readGround(xcb_window_t root) {
  ground_ = QImage(picture_.size(), QImage::Format_RGB32);
  ground_.fill(Qt::black);
  const auto request =
      xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root, static_cast<std::int16_t>(pixels_.x()),
                    static_cast<std::int16_t>(pixels_.y()), static_cast<std::uint16_t>(pixels_.width()),
                    static_cast<std::uint16_t>(pixels_.height()), ~0U);
  // What reaches beyond the X screen can't be read.
  const x11::Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(connection_, request, nullptr));
  if (!image || xcb_get_image_data_length(image.get()) != ground_.sizeInBytes()) return;
  std::memcpy(ground_.bits(), xcb_get_image_data(image.get()),
              static_cast<std::size_t>(ground_.sizeInBytes()));
}

bool PanelWindow::blursBehind(xcb_connection_t* connection) {
  if (!x11::hasCompositor(connection)) return false;
  // Who blurs announces it by a property of that name.
  const x11::Reply<xcb_list_properties_reply_t> properties(xcb_list_properties_reply(
      connection, xcb_list_properties(connection, x11::screenOf(connection).root), nullptr));
  if (!properties) return false;
  const xcb_atom_t* first = xcb_list_properties_atoms(properties.get());
  const xcb_atom_t* end = first + xcb_list_properties_atoms_length(properties.get());
  return std::find(first, end, x11::atom(connection, "_KDE_NET_WM_BLUR_BEHIND_REGION")) != end;
}

void PanelWindow::blurBehind() {
  std::vector<std::uint32_t> region;
  for (const xcb_rectangle_t& row : inkRows(picture_))
    for (const int value : {int{row.x}, int{row.y}, int{row.width}, int{row.height}})
      region.push_back(static_cast<std::uint32_t>(value));
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_,
                      x11::atom(connection_, "_KDE_NET_WM_BLUR_BEHIND_REGION"), XCB_ATOM_CARDINAL, 32,
                      static_cast<std::uint32_t>(region.size()), region.data());
}

void PanelWindow::showOnTop() {
  const std::uint32_t above = XCB_STACK_MODE_ABOVE;
  xcb_configure_window(connection_, window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
  xcb_map_window(connection_, window_);
  paint();
}

void PanelWindow::setOpacity(double opacity) {
  opacity_ = std::clamp(opacity, 0.0, 1.0);
  paint();
}

std::optional<std::uint32_t> PanelWindow::groundColor() const {
  const QRgb color = picture_.pixel(groundPixel() - pixels_.topLeft());
  if (qAlpha(color) != 255) return std::nullopt;
  return color & 0xFFFFFF;
}

void PanelWindow::paint() {
  if (isTranslucent()) {
    if (opacity_ >= 1) {
      write(picture_);
    } else {
      QImage faded(picture_.size(), QImage::Format_ARGB32_Premultiplied);
      faded.fill(Qt::transparent);
      QPainter painter(&faded);
      painter.setOpacity(opacity_);
      painter.drawImage(0, 0, picture_);
      painter.end();
      write(faded);
    }
  } else {
    QImage mixed = ground_;
    QPainter painter(&mixed);
    painter.setOpacity(opacity_);
    painter.drawImage(0, 0, picture_);
    painter.end();
    write(mixed);
  }
  xcb_flush(connection_);
}

void PanelWindow::write(const QImage& image) {
  // As many rows at a time as one request takes.
  const auto bytesPerRow = static_cast<std::size_t>(image.bytesPerLine());
  constexpr std::size_t header = 64;
  const std::size_t most = std::size_t{4} * xcb_get_maximum_request_length(connection_) - header;
  const int rowsAtATime = static_cast<int>(std::max<std::size_t>(1, most / bytesPerRow));
  for (int y = 0; y < image.height(); y += rowsAtATime) {
    const int rows = std::min(rowsAtATime, image.height() - y);
    xcb_put_image(
        connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, gc_, static_cast<std::uint16_t>(image.width()),
        static_cast<std::uint16_t>(rows), 0, static_cast<std::int16_t>(y), 0, depth_,
        static_cast<std::uint32_t>(bytesPerRow * static_cast<std::size_t>(rows)), image.constScanLine(y));
  }
}

}  // namespace lumiscan::desktop

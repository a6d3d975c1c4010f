#include "platform/linux/PanelWindow.h"

#include <xcb/xfixes.h>

#include <QPainter>
#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "platform/linux/x11/Connection.h"

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
                         std::string_view windowClass)
    : connection_(connection),
      picture_(std::move(picture)),
      window_(connection, {
                              .pixels = pixels,
                              .wantsAlpha = x11::hasCompositor(connection),
                              .events = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_VISIBILITY_CHANGE,
                              .instanceName = "panel",
                              .className = windowClass,
                              .types = {"_NET_WM_WINDOW_TYPE_NOTIFICATION"},
                          }) {
  // A compositor's own shadow would be that of a rectangle.
  const std::uint32_t no = 0;
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, id(), x11::atom(connection_, "_COMPTON_SHADOW"),
                      XCB_ATOM_CARDINAL, 32, 1, &no);
  letTheMouseThrough();
  if (isTranslucent()) return;
  takeShapeOf(picture_);
  readGround();
}

void PanelWindow::letTheMouseThrough() {
  const xcb_xfixes_region_t nothing = xcb_generate_id(connection_);
  xcb_xfixes_create_region(connection_, nothing, 0, nullptr);
  xcb_xfixes_set_window_shape_region(connection_, id(), XCB_SHAPE_SK_INPUT, 0, 0, nothing);
  xcb_xfixes_destroy_region(connection_, nothing);
}

void PanelWindow::takeShapeOf(const QImage& picture) {
  const auto rows = inkRows(picture);
  const xcb_xfixes_region_t shape = xcb_generate_id(connection_);
  xcb_xfixes_create_region(connection_, shape, static_cast<std::uint32_t>(rows.size()), rows.data());
  xcb_xfixes_set_window_shape_region(connection_, id(), XCB_SHAPE_SK_BOUNDING, 0, 0, shape);
  xcb_xfixes_destroy_region(connection_, shape);
}

void PanelWindow::readGround() {
  ground_ = QImage(picture_.size(), QImage::Format_RGB32);
  ground_.fill(Qt::black);
  const QRect& pixels = window_.pixels();
  const auto request = xcb_get_image(
      connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, x11::screenOf(connection_).root,
      static_cast<std::int16_t>(pixels.x()), static_cast<std::int16_t>(pixels.y()),
      static_cast<std::uint16_t>(pixels.width()), static_cast<std::uint16_t>(pixels.height()), ~0U);
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
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, id(),
                      x11::atom(connection_, "_KDE_NET_WM_BLUR_BEHIND_REGION"), XCB_ATOM_CARDINAL, 32,
                      static_cast<std::uint32_t>(region.size()), region.data());
}

void PanelWindow::showOnTop() {
  window_.showOnTop();
  paint();
}

void PanelWindow::setOpacity(double opacity) {
  opacity_ = std::clamp(opacity, 0.0, 1.0);
  paint();
}

std::optional<std::uint32_t> PanelWindow::groundColor() const {
  const QRgb color = picture_.pixel(groundPixel() - window_.pixels().topLeft());
  if (qAlpha(color) != 255) return std::nullopt;
  return color & 0xFFFFFF;
}

void PanelWindow::paint() {
  if (isTranslucent() && opacity_ >= 1) {
    window_.write(picture_, {0, 0});
  } else {
    QImage mixed = ground_;
    if (isTranslucent()) {
      mixed = QImage(picture_.size(), QImage::Format_ARGB32_Premultiplied);
      mixed.fill(Qt::transparent);
    }
    QPainter painter(&mixed);
    painter.setOpacity(opacity_);
    painter.drawImage(0, 0, picture_);
    painter.end();
    window_.write(mixed, {0, 0});
  }
  xcb_flush(connection_);
}

}  // namespace lumiscan::desktop

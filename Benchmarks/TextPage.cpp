#include "TextPage.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "desktop/PrivateDesktop.h"
#include "platform/linux/drawing/BitmapContext.h"

namespace lumiscan {

namespace {

/// The words of a licence that every Debian has, in lines as long as the page is wide.
std::vector<std::string> pageLines() {
  std::ifstream licence("/usr/share/common-licenses/GPL-3");
  constexpr std::size_t longest = 140;
  std::vector<std::string> lines(1);
  for (std::string word; licence >> word;) {
    if (lines.back().size() + word.size() >= longest) lines.emplace_back();
    lines.back() += (lines.back().empty() ? "" : " ") + word;
  }
  return lines;
}

}  // namespace

void showTextPage(testing::PrivateDesktop& desktop) {
  const auto context = lumiscan::desktop::CairoBitmapContext::create(desktop.width(), desktop.height());
  context->fill(platform::BezierPath::rect({{0, 0}, {10'000, 10'000}}), platform::Color::white());
  constexpr double lead = 19;
  double y = desktop.height() - lead - 12;
  for (const std::string& line : pageLines()) {
    if (y < 0) break;
    context->draw(line, {12, y}, {{platform::Font::Design::sansSerif, 14}, platform::Color::black()});
    y -= lead;
  }
  const platform::Image page = context->makeImage();
  xcb_connection_t* x = desktop.x();
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(x)).data;
  const xcb_pixmap_t pixmap = xcb_generate_id(x);
  const xcb_gcontext_t gc = xcb_generate_id(x);
  xcb_create_pixmap(x, screen->root_depth, pixmap, desktop.root(), static_cast<std::uint16_t>(page.width()),
                    static_cast<std::uint16_t>(page.height()));
  xcb_create_gc(x, gc, pixmap, 0, nullptr);
  for (int row = 0; row < page.height(); ++row)
    xcb_put_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, gc, static_cast<std::uint16_t>(page.width()), 1, 0,
                  static_cast<std::int16_t>(row), 0, screen->root_depth,
                  static_cast<std::uint32_t>(page.width()) * 4,
                  reinterpret_cast<const std::uint8_t*>(page.row(row)));
  xcb_change_window_attributes(x, desktop.root(), XCB_CW_BACK_PIXMAP, &pixmap);
  xcb_clear_area(x, 0, desktop.root(), 0, 0, 0, 0);
  xcb_free_gc(x, gc);
  xcb_free_pixmap(x, pixmap);
  xcb_flush(x);
}

}  // namespace lumiscan

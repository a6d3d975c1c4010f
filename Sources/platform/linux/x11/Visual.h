#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace lumiscan::desktop::x11 {

/// A visual of that depth, which has an alpha channel where it is 32; 0 when the server has none.
xcb_visualid_t visualOfDepth(const xcb_screen_t& screen, std::uint8_t depth);

}  // namespace lumiscan::desktop::x11

#include "platform/linux/x11/Visual.h"

namespace lumiscan::desktop::x11 {

xcb_visualid_t visualOfDepth(const xcb_screen_t& screen, std::uint8_t depth) {
  for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem; xcb_depth_next(&depths)) {
    if (depths.data->depth != depth) continue;
    for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem; xcb_visualtype_next(&visuals))
      if (visuals.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR) return visuals.data->visual_id;
  }
  return 0;
}

}  // namespace lumiscan::desktop::x11

#include "output/ClipboardService.h"

#include "platform/Pasteboard.h"

namespace lumiscan::ClipboardService {

void copy(std::string_view text) {
  platform::Pasteboard& pasteboard = platform::Pasteboard::general();
  pasteboard.clearContents();
  pasteboard.setString(text);
}

}  // namespace lumiscan::ClipboardService

#include "output/ClipboardService.h"

#include "platform/Pasteboard.h"
#include "platform/UserDefaults.h"

namespace lumiscan::ClipboardService {

void copy(std::string_view text) {
  platform::Pasteboard& pasteboard = platform::Pasteboard::general();
  pasteboard.clearContents();
  pasteboard.setString(text);
}

std::string appendAdditive(std::string_view text) {
  platform::UserDefaults& defaults = platform::UserDefaults::standard();
  std::string buffer = defaults.stringForKey(additiveBufferKey).value_or("");
  if (!buffer.empty()) buffer += '\n';
  buffer += text;
  defaults.setObject(additiveBufferKey, buffer);
  copy(buffer);
  return buffer;
}

void clearAdditive() { platform::UserDefaults::standard().setObject(additiveBufferKey, std::string()); }

}  // namespace lumiscan::ClipboardService

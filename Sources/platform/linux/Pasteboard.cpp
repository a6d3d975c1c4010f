#include "platform/linux/Pasteboard.h"

#include <utility>

#include "platform/UTF8.h"

namespace lumiscan::desktop {

void X11Pasteboard::leave() {
  flush();
  owner_.handToManager();
}

void X11Pasteboard::clearContents() { write(std::nullopt); }

void X11Pasteboard::setString(std::string_view text) { write(platform::validUTF8(text)); }

void X11Pasteboard::write(Content content) {
  if (!pending_)
    QMetaObject::invokeMethod(
        &context_, [this] { flush(); }, Qt::QueuedConnection);
  pending_ = std::move(content);
}

void X11Pasteboard::flush() {
  if (!pending_) return;
  owner_.offer(*std::exchange(pending_, std::nullopt));
}

}  // namespace lumiscan::desktop

#include "platform/linux/Pasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <utility>

namespace lumiscan::desktop {

QtPasteboard::~QtPasteboard() { flush(); }

void QtPasteboard::clearContents() { write(std::nullopt); }

void QtPasteboard::setString(std::string_view text) {
  write(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

void QtPasteboard::write(Content content) {
  if (!pending_)
    QMetaObject::invokeMethod(
        &context_, [this] { flush(); }, Qt::QueuedConnection);
  pending_ = std::move(content);
}

void QtPasteboard::flush() {
  if (!pending_) return;
  if (*pending_)
    QGuiApplication::clipboard()->setText(**pending_);
  else
    QGuiApplication::clipboard()->clear();
  pending_.reset();
}

}  // namespace lumiscan::desktop

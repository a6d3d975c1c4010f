#pragma once

#include <QObject>
#include <optional>
#include <string>

#include "platform/Pasteboard.h"
#include "platform/linux/ClipboardOwner.h"

namespace lumiscan::desktop {

/// The X clipboard. What the program writes within one event is offered at its end, in one step.
class X11Pasteboard : public platform::Pasteboard {
 public:
  void clearContents() override;
  void setString(std::string_view text) override;

  /// Called at the end of the program: offers what still waits, and lets the clipboard manager keep it.
  void leave();

 private:
  /// What the pasteboard will hold: a text, or nothing.
  using Content = std::optional<std::string>;

  void write(Content content);
  void flush();

  ClipboardOwner owner_;
  QObject context_;
  std::optional<Content> pending_;
};

}  // namespace lumiscan::desktop

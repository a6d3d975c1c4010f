#pragma once

#include <QObject>
#include <QString>
#include <optional>

#include "platform/Pasteboard.h"

namespace lumiscan::desktop {

/// The X clipboard, through Qt. What the program writes within one event is offered at its end, in one step.
class QtPasteboard : public platform::Pasteboard {
 public:
  /// Offers at once what still waits for the end of the event.
  ~QtPasteboard() override;

  void clearContents() override;
  void setString(std::string_view text) override;

 private:
  /// What the pasteboard will hold: a text, or nothing.
  using Content = std::optional<QString>;

  void write(Content content);
  void flush();

  QObject context_;
  std::optional<Content> pending_;
};

}  // namespace lumiscan::desktop

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Pasteboard.h"
#include "support/Effects.h"

namespace lumiscan::testing {

/// The pasteboard as other programs see it.
class SimulatedPasteboard : public platform::Pasteboard {
 public:
  explicit SimulatedPasteboard(Effects& effects) : effects_(effects) {}

  void clearContents() override;
  void setString(std::string_view text) override;

  /// Called when an event has been handled: other programs see what was written in it.
  void publish();

  /// Another program takes the pasteboard over.
  void takeOver(std::string_view text);

  /// What other programs read; nothing when the pasteboard holds no text.
  std::optional<std::string> text;
  /// How often other programs have seen the pasteboard change.
  int changeCount = 0;

 private:
  Effects& effects_;
  bool owned_ = false;
  bool changed_ = false;
  std::optional<std::string> pending_;
};

}  // namespace lumiscan::testing

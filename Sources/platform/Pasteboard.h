#pragma once

#include <string_view>

namespace lumiscan::platform {

/// The system-wide pasteboard. Main thread only.
class Pasteboard {
 public:
  virtual ~Pasteboard() = default;

  /// That of the installed desktop.
  static Pasteboard& general();

  /// Takes the pasteboard over and removes what it held. Other programs see the change when the current
  /// event has been handled, together with a `setString` that follows in the same event: no program sees
  /// a pasteboard that is empty in between.
  virtual void clearContents() = 0;

  /// Offers `text` (UTF-8; invalid sequences are replaced by U+FFFD) as the plain-text representation.
  /// Precondition: `clearContents` went before, within the same event.
  virtual void setString(std::string_view text) = 0;
};

}  // namespace lumiscan::platform

#pragma once

namespace lumiscan::platform {

enum class CursorShape { arrow, crosshair };

/// The cursors that were pushed over the one that windows ask for; the topmost shows. Main thread only.
class CursorStack {
 public:
  virtual ~CursorStack() = default;

  /// That of the installed desktop.
  static CursorStack& shared();

  virtual void push(CursorShape shape) = 0;
  /// Shows again what showed before the last push. Does nothing when nothing is pushed.
  virtual void pop() = 0;
};

}  // namespace lumiscan::platform

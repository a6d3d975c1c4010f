#pragma once

#include <memory>

#include "platform/Screen.h"
#include "platform/Window.h"

namespace lumiscan {

class SelectionWindow;

/// Whom an overlay reports its end to. Main thread only.
class SelectionWindowDelegate {
 public:
  virtual ~SelectionWindowDelegate() = default;
  /// The user released the mouse over a rectangle that is large enough. `globalRect` is in the global
  /// screen space: points, origin at the bottom left of the primary screen, y upwards; it may reach beyond
  /// the screen.
  virtual void selectionWindowDidConfirmSelection(SelectionWindow& window, const platform::Rect& globalRect,
                                                  const platform::Screen& screen) = 0;
  virtual void selectionWindowDidCancel(SelectionWindow& window) = 0;
};

/// The transparent overlay over one screen, on which the user drags a rectangle. Used for one session and
/// then dropped. Main thread only.
class SelectionWindow : public platform::Window {
 public:
  /// Covers `screen` exactly. The delegate is held weakly.
  SelectionWindow(const platform::Screen& screen, std::weak_ptr<SelectionWindowDelegate> delegate);

  const platform::Screen& targetScreen() const { return targetScreen_; }
  bool canBecomeKey() const override { return true; }

  /// Reports a cancel; without a delegate only hides this window.
  void cancel();
  /// Reports a confirmation; without a delegate only hides this window. `rect` is in view coordinates.
  void confirmSelection(const platform::Rect& rect);

 private:
  platform::Screen targetScreen_;
  std::weak_ptr<SelectionWindowDelegate> selectionDelegate_;
};

}  // namespace lumiscan

#include "capture/SelectionWindow.h"

#include <utility>

#include "capture/CaptureLog.h"
#include "capture/SelectionView.h"

namespace lumiscan {

SelectionWindow::SelectionWindow(const platform::Screen& screen,
                                 std::weak_ptr<SelectionWindowDelegate> delegate)
    : Window(screen.frame, platform::windowStyleBorderless),
      targetScreen_(screen),
      selectionDelegate_(std::move(delegate)) {
  Attributes& look = attributes();
  look.level = platform::windowLevelScreenSaver + 1;
  look.opaque = false;
  look.backgroundColor = platform::Color::clear();
  look.hasShadow = false;
  look.alphaValue = 1.0;
  look.acceptsMouseMovedEvents = true;
  look.collectionBehavior =
      platform::canJoinAllSpaces | platform::ignoresCycle | platform::fullScreenAuxiliary;
  setContentView(std::make_unique<SelectionView>(platform::Rect{{0, 0}, screen.frame.size}));
}

void SelectionWindow::cancel() {
  if (const auto delegate = selectionDelegate_.lock()) {
    delegate->selectionWindowDidCancel(*this);
    return;
  }
  captureLog().error("cancel with nil delegate — session would leak");
  orderOut();
}

void SelectionWindow::confirmSelection(const platform::Rect& rect) {
  const platform::Rect globalRect{{rect.origin.x + frame().origin.x, rect.origin.y + frame().origin.y},
                                  rect.size};
  if (const auto delegate = selectionDelegate_.lock())
    delegate->selectionWindowDidConfirmSelection(*this, globalRect, targetScreen_);
  else
    orderOut();
}

}  // namespace lumiscan

#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "capture/CaptureMode.h"
#include "capture/LastSelection.h"
#include "capture/SelectionWindow.h"
#include "platform/Dispatch.h"

namespace lumiscan {

/// Nothing smaller than this, in pixels, is cut out of a picture.
inline constexpr int smallestCropSide = 4;
/// What a rectangle may miss whole pixels by, in pixels, and still lie on them: fractions of a display and
/// fractional scales leave rounding errors, which must not cost or add a row.
inline constexpr double pixelTolerance = 1e-6;

/// Runs one interactive capture session at a time: covers every screen with an overlay, waits for a
/// rectangle or a cancel, takes a picture of the display and cuts the rectangle out. Repeats the last
/// selection without an overlay. Main thread only, but for the pictures and the cut, which background tasks
/// make. Owned by a shared pointer, since tasks and timers hold it weakly.
class ScreenCaptureController : public SelectionWindowDelegate,
                                public std::enable_shared_from_this<ScreenCaptureController> {
 public:
  /// Opens a session. `completion` is called exactly once: before this returns when the screen may not be
  /// captured or there is none, later otherwise, and never when another `begin` replaces the session while
  /// its overlays are up.
  void begin(CaptureMode mode, LineBreaksOverride lineBreaksOverride, CaptureCompletion completion);

  /// Captures the rectangle that was captured last on the same display again, wherever it is there now.
  /// Leaves an open session alone. `completion` is called exactly once: before this returns when no selection
  /// is stored, later otherwise, with `noScreenAccess` when its display isn't attached any more.
  void repeatLast(CaptureMode mode, LineBreaksOverride lineBreaksOverride, CaptureCompletion completion);

  /// The overlays of the open session, in the order of the screens; empty while none shows.
  const std::vector<std::shared_ptr<SelectionWindow>>& selectionWindows() const { return selectionWindows_; }

  void selectionWindowDidConfirmSelection(SelectionWindow& window, const platform::Rect& globalRect,
                                          const platform::Screen& screen) override;
  void selectionWindowDidCancel(SelectionWindow& window) override;

  /// The part of a display's `snapshot` inside `globalRect` (points, global screen space), rounded outwards
  /// to whole pixels, then cut to the display. Nothing when the rounded rectangle is less than 4 pixels wide
  /// or high, or not on the display. Any thread.
  static std::optional<platform::Image> crop(const platform::Image& snapshot,
                                             const platform::Rect& globalRect,
                                             const platform::Screen& screen);

 private:
  /// A capture that was asked for. Once confirmed it travels with its picture, apart from the controller,
  /// so that a session begun meanwhile can't receive its result.
  struct Request {
    CaptureMode mode = CaptureMode::text;
    LineBreaksOverride lineBreaksOverride;
    CaptureCompletion completion;

    void deliver(CaptureOutcome outcome) const {
      if (completion) completion(std::move(outcome), mode, lineBreaksOverride);
    }
  };

  void showOverlays(const std::vector<platform::Screen>& screens);
  void armWatchdog();
  void watchdogFired();
  void closeAllWindows();
  /// The open session's request, which the controller then no longer has.
  Request takeRequest();
  static void deliverUncropped(const Request& request, bool snapshotTaken);

  /// `globalRect` (points, global screen space) relative to the display's top left, y downwards. Any thread.
  static platform::Rect onDisplay(const platform::Rect& globalRect, platform::DisplayID display);

  // The last selection. (ScreenCaptureController+Repeat.cpp)
  /// Keeps what was stored before when the display has gone meanwhile.
  static void storeLastSelection(platform::DisplayID display, const platform::Rect& globalRect);
  static std::optional<LastSelection> loadLastSelection();

  std::vector<std::shared_ptr<SelectionWindow>> selectionWindows_;
  Request active_;
  bool crosshairPushed_ = false;
  std::shared_ptr<platform::WorkItem> watchdogWorkItem_;
};

}  // namespace lumiscan

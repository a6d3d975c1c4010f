#pragma once

#include <QApplication>
#include <QSocketNotifier>
#include <memory>

#include "platform/Application.h"
#include "platform/Cursor.h"

namespace lumiscan::desktop {

/// The application object on Qt. Ends its event loop, as if the user had quit, on SIGTERM, SIGINT and
/// SIGHUP. When the X server goes, the process ends at once with the status 1, in the middle of whatever it
/// is doing: everything is saved as it happens. Precondition: an X display answers.
class QtApplication : public platform::Application {
 public:
  QtApplication();
  ~QtApplication() override;

  void setDelegate(platform::ApplicationDelegate* delegate) override { delegate_ = delegate; }
  void setActivationPolicy(platform::ActivationPolicy policy) override;
  void run() override;
  void terminate() override;
  void activateIgnoringOtherApps() override;
  void disableSuddenTermination() override;

 private:
  void catchSignals();

  // No argument of the program's is the toolkit's: it knows some that end the process.
  char name_[9] = "lumiscan";
  char* arguments_[2] = {name_, nullptr};
  int argumentCount_ = 1;
  QApplication application_;
  platform::ApplicationDelegate* delegate_ = nullptr;
  std::unique_ptr<QSocketNotifier> signalNotifier_;
};

/// The cursor stack on Qt's override cursors.
class QtCursorStack : public platform::CursorStack {
 public:
  void push(platform::CursorShape shape) override;
  void pop() override;
};

Qt::CursorShape qtCursorShape(platform::CursorShape shape);

}  // namespace lumiscan::desktop

#pragma once

#include <functional>
#include <memory>

#include "platform/Declarative.h"
#include "platform/View.h"

namespace lumiscan::platform {

class WorkItem;

/// Describes a form out of a state that it owns.
class FormContent {
 public:
  virtual ~FormContent() = default;
  /// The form for the state as it is. Its handlers may be called as long as this object lives.
  virtual Form body() = 0;

 protected:
  /// The form will be described anew after the current event, once for all changes within it.
  void stateDidChange() const {
    if (onStateChange_) onStateChange_();
  }

 private:
  friend class HostingView;
  std::function<void()> onStateChange_;
};

/// The content of a titled window: a form, which the desktop shows with its own controls. It owns the
/// content that describes the form. Main thread only.
class HostingView : public View {
 public:
  explicit HostingView(std::unique_ptr<FormContent> root);
  ~HostingView() override;

  const Form& form() const { return form_; }
  /// Called each time the form was described anew. Set by the desktop, which takes it out before it goes.
  std::function<void()> formChanged;

 private:
  void scheduleUpdate();

  std::unique_ptr<FormContent> root_;
  Form form_;
  std::shared_ptr<WorkItem> update_;  ///< That waits, if one does.
};

}  // namespace lumiscan::platform

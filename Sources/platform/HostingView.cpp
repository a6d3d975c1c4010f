#include "platform/HostingView.h"

#include <utility>

#include "platform/Dispatch.h"

namespace lumiscan::platform {

HostingView::HostingView(std::unique_ptr<FormContent> root) : View({}), root_(std::move(root)) {
  root_->onStateChange_ = [this] { scheduleUpdate(); };
  form_ = root_->body();
}

HostingView::~HostingView() {
  if (update_) update_->cancel();
}

void HostingView::scheduleUpdate() {
  if (update_) return;
  update_ = std::make_shared<WorkItem>([this] {
    update_ = nullptr;
    form_ = root_->body();
    if (formChanged) formChanged();
  });
  MainQueue::async([update = update_] { update->perform(); });
}

}  // namespace lumiscan::platform

#include "support/SimulatedPasteboard.h"

#include <utility>

#include "platform/Dispatch.h"
#include "platform/UTF8.h"

namespace lumiscan::testing {

void SimulatedPasteboard::clearContents() {
  platform::MainQueue::assertCurrent();
  pending_.reset();
  owned_ = true;
  changed_ = true;
}

void SimulatedPasteboard::setString(std::string_view string) {
  platform::MainQueue::assertCurrent();
  if (!owned_) return;  // Only who has taken the pasteboard over has something to offer.
  pending_ = platform::validUTF8(string);
  effects_.add("pasteboard " + *pending_);
  changed_ = true;
}

void SimulatedPasteboard::takeOver(std::string_view string) {
  owned_ = false;
  text = string;
}

void SimulatedPasteboard::publish() {
  if (!std::exchange(changed_, false)) return;
  text = pending_;
  ++changeCount;
}

}  // namespace lumiscan::testing

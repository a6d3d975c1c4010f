#pragma once

#include <QObject>
#include <QThread>
#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <utility>

namespace lumiscan::desktop {

/// What `function` gives on the thread of `context`, where the event loop calls it. Any thread, that one too.
/// Nothing when it hasn't been called within `patience`; then it still is later, as long as `context` lives.
template <typename Function>
auto callOnThread(QObject& context, Function function, std::chrono::milliseconds patience)
    -> std::optional<decltype(function())> {
  if (QThread::currentThread() == context.thread()) return function();
  const auto promise = std::make_shared<std::promise<decltype(function())>>();
  auto future = promise->get_future();
  QMetaObject::invokeMethod(
      &context, [promise, function = std::move(function)]() mutable { promise->set_value(function()); },
      Qt::QueuedConnection);
  if (future.wait_for(patience) != std::future_status::ready) return std::nullopt;
  return future.get();
}

}  // namespace lumiscan::desktop

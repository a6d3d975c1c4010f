#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

#include "platform/linux/Worker.h"

namespace lumiscan::desktop {

/// What speaks to a server that may hang, and the worker that does so with it. When they hang, both are left
/// for new ones. Main thread only, but for the works.
template <typename Client>
class ServerWorker {
 public:
  /// `patience` is how long a work may take before it counts as hanging.
  explicit ServerWorker(std::chrono::milliseconds patience) : patience_(patience) {}
  ~ServerWorker() { leave(); }
  ServerWorker(const ServerWorker&) = delete;
  ServerWorker& operator=(const ServerWorker&) = delete;

  /// Makes a client where there is none, or only one that hangs. False when as many hang as may.
  bool start() {
    if (worker_ && !worker_->hangs(patience_)) return true;
    if (!Worker::mayBeReplaced()) return false;
    leave();
    client_ = std::make_shared<Client>();
    worker_ = std::make_unique<Worker>();
    return true;
  }

  /// The client that was started last, for what doesn't wait for the server; null before.
  Client* client() const { return client_.get(); }
  /// Has the worker do something with that client.
  void post(std::function<void(Client&)> work) {
    worker_->post([client = client_, work = std::move(work)] { work(*client); });
  }

 private:
  void leave() {
    // Its end may wait for the server: never here.
    if (worker_) worker_->post([client = std::move(client_)]() mutable { client = nullptr; });
  }

  std::chrono::milliseconds patience_;
  std::shared_ptr<Client> client_;
  std::unique_ptr<Worker> worker_;
};

}  // namespace lumiscan::desktop

#include "platform/linux/SpeechSession.h"

#include <libspeechd.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <map>
#include <utility>

#include "platform/linux/SpeechLanguages.h"

namespace lumiscan::desktop {

namespace {

/// Who hears of the end of messages, by the server's number of the connection: the library's callbacks carry
/// nothing else.
class Listeners {
 public:
  static Listeners& shared() {
    // Never destroyed, since threads of the library may call until the very end.
    static auto* const listeners = new Listeners;
    return *listeners;
  }
  void set(std::size_t client, std::function<void(int)> ended) {
    const std::lock_guard lock(mutex_);
    ended_[client] = std::move(ended);
  }
  void remove(std::size_t client) {
    const std::lock_guard lock(mutex_);
    ended_.erase(client);
  }
  static void messageEnded(std::size_t message, std::size_t client, SPDNotificationType) {
    Listeners& self = shared();
    const std::lock_guard lock(self.mutex_);
    if (const auto found = self.ended_.find(client); found != self.ended_.end())
      found->second(static_cast<int>(message));
  }

 private:
  std::mutex mutex_;
  std::map<std::size_t, std::function<void(int)>> ended_;
};

}  // namespace

struct SpeechSession::Connection {
  SPDConnection* server = nullptr;
  std::size_t client = 0;
  int watched = -1;  ///< The socket, on a descriptor of its own that any thread may look at.
  std::string defaultLanguage;
  std::vector<std::string> languages;

  ~Connection() {
    Listeners::shared().remove(client);
    if (watched >= 0) ::close(watched);
    if (server) spd_close(server);
  }
  bool isBroken() const {
    pollfd state{watched, POLLRDHUP, 0};
    return poll(&state, 1, 0) > 0 && (state.revents & (POLLRDHUP | POLLHUP | POLLERR | POLLNVAL)) != 0;
  }
  void readLanguages() {
    if (char* language = spd_get_language(server)) {
      defaultLanguage = language;
      std::free(language);
    }
    languages = offeredSpeechLanguages(server);
  }
  void useLanguage(const std::optional<std::string>& identifier) {
    const auto best = identifier ? bestSpeechLanguage(languages, *identifier) : std::nullopt;
    const std::string& language = best ? *best : defaultLanguage;
    if (!language.empty()) spd_set_language(server, language.c_str());
  }
};

SpeechSession::SpeechSession() = default;
SpeechSession::~SpeechSession() = default;

SpeechSession::Ticket SpeechSession::announce() {
  const std::lock_guard lock(mutex_);
  announced_.insert(++lastTicket_);
  return lastTicket_;
}

void SpeechSession::dropAll() {
  const std::lock_guard lock(mutex_);
  announced_.clear();
  spoken_.clear();
}

bool SpeechSession::isSpeaking() const {
  const std::lock_guard lock(mutex_);
  if (!announced_.empty()) return true;
  return !spoken_.empty() && connection_ && !connection_->isBroken();
}

void SpeechSession::ended(int message) {
  const std::lock_guard lock(mutex_);
  if (spoken_.erase(message) == 0) endedEarly_.insert(message);
}

void SpeechSession::drop(Ticket ticket) {
  const std::lock_guard lock(mutex_);
  announced_.erase(ticket);
}

SpeechSession::Connection* SpeechSession::connection() {
  if (connection_ && !connection_->isBroken()) return connection_.get();
  std::shared_ptr<Connection> broken;  // Closed without the lock, which the library's thread may want.
  {
    const std::lock_guard lock(mutex_);
    broken = std::exchange(connection_, nullptr);
    spoken_.clear();
    endedEarly_.clear();
  }
  broken = nullptr;
  auto made = std::make_shared<Connection>();
  char* error = nullptr;
  made->server = spd_open2("lumiscan", "main", nullptr, SPD_MODE_THREADED, nullptr, /*autospawn=*/1, &error);
  std::free(error);
  if (!made->server) return nullptr;
  made->watched = dup(made->server->socket);
  made->client = static_cast<std::size_t>(spd_get_client_id(made->server));
  Listeners::shared().set(made->client, [this](int message) { ended(message); });
  made->server->callback_end = made->server->callback_cancel = Listeners::messageEnded;
  spd_set_notification_on(made->server, SPD_END);
  spd_set_notification_on(made->server, SPD_CANCEL);
  made->readLanguages();
  const std::lock_guard lock(mutex_);
  connection_ = made;
  return connection_.get();
}

void SpeechSession::speak(Ticket ticket, const platform::SpeechUtterance& utterance) {
  const auto isWanted = [this, ticket] {
    const std::lock_guard lock(mutex_);
    return announced_.contains(ticket);
  };
  if (!isWanted()) return;
  Connection* const server = connection();
  if (!server) {
    drop(ticket);
    return;
  }
  server->useLanguage(utterance.language);
  if (!isWanted()) return;
  std::string text = utterance.text;
  std::ranges::replace(text, '\0', ' ');
  // Messages are spoken one after the other; of what is said as text the server keeps the last alone.
  const int message = spd_say(server->server, SPD_MESSAGE, text.c_str());
  const std::lock_guard lock(mutex_);
  // One that was dropped meanwhile is silenced by the `cancel` that follows.
  const bool wanted = announced_.erase(ticket) > 0;
  const bool hasEnded = endedEarly_.contains(message);
  endedEarly_.clear();  // The others were dropped while they were spoken.
  if (message >= 0 && wanted && !hasEnded) spoken_.insert(message);
}

void SpeechSession::cancel() {
  if (connection_ && !connection_->isBroken()) spd_cancel(connection_->server);
}

}  // namespace lumiscan::desktop

#include "platform/linux/Sound.h"

#include <canberra.h>
#include <sys/mman.h>
#include <unistd.h>

#include <QFile>
#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "platform/Application.h"

/// Makes the sounds in this library known; the macro must stand outside of namespaces.
static void useSoundResources() { Q_INIT_RESOURCE(sounds); }

namespace lumiscan::desktop {

namespace {

constexpr std::chrono::milliseconds serverPatience(2000);

/// A file without a name that holds a sound of ours: the library plays files only.
class SoundFile {
 public:
  explicit SoundFile(const QByteArray& content) : descriptor_(memfd_create("sound", MFD_CLOEXEC)) {
    if (::write(descriptor_, content.data(), static_cast<std::size_t>(content.size())) != content.size())
      complete_ = false;
  }
  ~SoundFile() { ::close(descriptor_); }
  SoundFile(const SoundFile&) = delete;
  SoundFile& operator=(const SoundFile&) = delete;

  bool isComplete() const { return complete_; }
  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
  bool complete_ = true;
};

}  // namespace

/// Used on the worker's thread only.
struct CanberraSounds::Player {
  ~Player() { disconnect(); }

  void connect() {
    if (context) return;
    if (ca_context_create(&context) != CA_SUCCESS) {
      context = nullptr;
      return;
    }
    ca_context_change_props(context, CA_PROP_APPLICATION_NAME, "Lumiscan", CA_PROP_APPLICATION_ID,
                            platform::applicationID, nullptr);
    if (ca_context_open(context) != CA_SUCCESS) disconnect();
  }
  void disconnect() {
    if (context) ca_context_destroy(context);
    context = nullptr;
  }

  const SoundFile* file(const std::string& name) {
    const auto known = files.find(name);
    if (known != files.end()) return known->second.get();
    QFile resource(QString::fromStdString(":/sounds/" + name + ".wav"));
    auto made =
        resource.open(QIODevice::ReadOnly) ? std::make_unique<SoundFile>(resource.readAll()) : nullptr;
    if (made && !made->isComplete()) made = nullptr;
    return files.emplace(name, std::move(made)).first->second.get();
  }

  void play(const std::string& name) {
    const SoundFile* const sound = file(name);
    if (!sound) return;
    // A server that was started again needs a new connection.
    for (int attempt = 0; attempt < 2; ++attempt) {
      connect();
      if (!context) return;
      if (ca_context_play(context, 0, CA_PROP_MEDIA_FILENAME, sound->path().c_str(), CA_PROP_MEDIA_NAME,
                          name.c_str(), CA_PROP_MEDIA_ROLE, "event", CA_PROP_CANBERRA_CACHE_CONTROL, "never",
                          nullptr) == CA_SUCCESS)
        return;
      disconnect();
    }
  }

  void beep() {
    connect();
    if (!context) return;
    const int status = ca_context_play(context, 0, CA_PROP_EVENT_ID, "bell-window-system", CA_PROP_MEDIA_ROLE,
                                       "event", nullptr);
    if (status != CA_SUCCESS && status != CA_ERROR_DISABLED) play("Basso");
  }

  ca_context* context = nullptr;
  std::map<std::string, std::unique_ptr<SoundFile>> files;
};

CanberraSounds::CanberraSounds() : player_(serverPatience) { useSoundResources(); }

CanberraSounds::~CanberraSounds() = default;

void CanberraSounds::play(std::string_view name) {
  if (!player_.start()) return;
  player_.post([sound = std::string(name)](Player& player) { player.play(sound); });
}

void CanberraSounds::beep() {
  if (player_.start()) player_.post([](Player& player) { player.beep(); });
}

}  // namespace lumiscan::desktop

#include "platform/linux/ReplacedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iterator>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

namespace lumiscan::desktop {

namespace fs = std::filesystem;

namespace {

/// How many versions the disk may be behind before a write waits for it.
constexpr std::size_t mostWaiting = 16;

std::string lastError() { return std::generic_category().message(errno); }

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }

 private:
  int number_;
};

bool writeAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = write(descriptor, content.data(), content.size());
    if (written < 0 && errno != EINTR) return false;
    if (written > 0) content.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool sync(const fs::path& path) {
  const Descriptor descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  return descriptor.number() >= 0 && fsync(descriptor.number()) == 0;
}

/// Whether the name is that of a version before, or of one that was never finished.
bool isOtherVersion(const fs::path& path, const fs::path& file) {
  constexpr std::size_t added = 7;  // A dot and six characters.
  const std::string name = path.filename().string();
  const std::string prefix = file.filename().string() + ".";
  return name.starts_with(prefix) && name.size() == file.filename().string().size() + added;
}

std::vector<fs::directory_entry> otherVersions(const fs::path& file) {
  std::vector<fs::directory_entry> found;
  std::error_code ignored;
  const fs::directory_iterator folder(file.parent_path(), ignored);
  std::ranges::copy_if(folder, std::back_inserter(found),
                       [&file](const auto& entry) { return isOtherVersion(entry.path(), file); });
  return found;
}

}  // namespace

/// Shared with the thread, which may outlive the object.
struct ReplacedFile::State {
  std::mutex mutex;
  /// What was replaced since the thread last began to sync.
  std::vector<fs::path> replaced;
  bool isDue = false;
  std::optional<std::string> problem;

  void bringToDisk(const fs::path& file);
};

void ReplacedFile::State::bringToDisk(const fs::path& file) {
  std::unique_lock lock(mutex);
  isDue = false;
  std::vector<fs::path> before = std::exchange(replaced, {});
  lock.unlock();
  // One that was removed meanwhile needs nothing to fall back on either.
  const bool isSafe = sync(file) || errno == ENOENT;
  const std::string error = lastError();
  if (isSafe) {
    // The exchange of the names, before what it gave the other name to goes. A file system that can't sync a
    // folder has it with the file.
    sync(file.parent_path());
    for (const fs::path& version : before) unlink(version.c_str());
    return;
  }
  lock.lock();
  problem = error;
  replaced.insert(replaced.begin(), std::make_move_iterator(before.begin()),
                  std::make_move_iterator(before.end()));
}

ReplacedFile::ReplacedFile(fs::path name) : name_(std::move(name)), state_(std::make_shared<State>()) {}

ReplacedFile::~ReplacedFile() = default;

fs::path ReplacedFile::place() const {
  constexpr int mostLinks = 40;  // As many as the kernel follows.
  fs::path path = name_;
  std::error_code error;
  for (int i = 0; i < mostLinks && fs::is_symlink(path, error); ++i)
    path = path.parent_path() / fs::read_symlink(path, error);
  return path;
}

std::optional<std::string> ReplacedFile::replace(std::string_view content) {
  const fs::path file = place();
  // A file that its owner has protected isn't replaced either.
  if (access(file.c_str(), W_OK) != 0 && errno != ENOENT) return lastError();
  std::string version = file.string() + ".XXXXXX";
  const Descriptor descriptor(mkostemp(version.data(), O_CLOEXEC));
  if (descriptor.number() < 0) return lastError();
  if (!writeAll(descriptor.number(), content)) {
    const std::string error = lastError();
    unlink(version.c_str());
    return error;
  }
  {
    const std::lock_guard lock(state_->mutex);
    // An exchange, since a rename that replaces a file, or the end of one, may wait until the disk has what
    // was written to it.
    if (state_->replaced.size() < mostWaiting &&
        renameat2(AT_FDCWD, version.c_str(), AT_FDCWD, file.c_str(), RENAME_EXCHANGE) == 0) {
      state_->replaced.push_back(version);
      startSync(file);
      return std::nullopt;
    }
  }
  if (fsync(descriptor.number()) == 0 && rename(version.c_str(), file.c_str()) == 0) return std::nullopt;
  const std::string error = lastError();
  unlink(version.c_str());
  return error;
}

void ReplacedFile::startSync(const fs::path& file) {
  if (std::exchange(state_->isDue, true)) return;
  worker_.post([state = state_, file] { state->bringToDisk(file); });
}

bool ReplacedFile::takeEarlierVersion() const {
  const fs::path file = place();
  const auto versions = otherVersions(file);
  std::error_code error;
  const auto newest = std::ranges::max_element(
      versions, {}, [&error](const fs::directory_entry& entry) { return entry.last_write_time(error); });
  return newest != versions.end() && rename(newest->path().c_str(), file.c_str()) == 0;
}

void ReplacedFile::removeOtherVersions() const {
  std::error_code ignored;
  for (const fs::directory_entry& version : otherVersions(place())) fs::remove(version, ignored);
}

std::optional<std::string> ReplacedFile::takeSyncProblem() {
  const std::lock_guard lock(state_->mutex);
  return std::exchange(state_->problem, std::nullopt);
}

}  // namespace lumiscan::desktop

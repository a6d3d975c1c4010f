#include "platform/linux/UserDefaults.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <QFile>
#include <cerrno>
#include <chrono>
#include <string>
#include <thread>
#include <utility>

#include "platform/Logger.h"
#include "platform/linux/ConfigFolder.h"

namespace lumiscan::desktop {

namespace {

using nlohmann::json;
using platform::Data;
using platform::DefaultsValue;

const platform::Logger& log() {
  static const platform::Logger logger("preferences");
  return logger;
}

json encoded(bool value) { return value; }
json encoded(double value) { return value; }
json encoded(const std::string& value) { return value; }
json encoded(const std::vector<std::string>& value) { return value; }
json encoded(const Data& data) {
  const auto bytes = QByteArray::fromRawData(data.bytes.data(), static_cast<qsizetype>(data.bytes.size()));
  return {{"data", bytes.toBase64().toStdString()}};
}

json encoded(const DefaultsValue& value) {
  return std::visit([](const auto& content) { return encoded(content); }, value);
}

std::optional<DefaultsValue> decodedData(const json& member) {
  if (member.size() != 1 || !member.contains("data") || !member["data"].is_string()) return std::nullopt;
  const auto text = QByteArray::fromStdString(member["data"].get<std::string>());
  const auto bytes = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
  if (!bytes) return std::nullopt;
  return Data{bytes.decoded.toStdString()};
}

/// Nothing for what isn't of any kind of preference.
std::optional<DefaultsValue> decoded(const json& member) {
  if (member.is_boolean()) return member.get<bool>();
  if (member.is_number()) return member.get<double>();
  if (member.is_string()) return member.get<std::string>();
  if (member.is_object()) return decodedData(member);
  if (!member.is_array()) return std::nullopt;
  for (const json& element : member)
    if (!element.is_string()) return std::nullopt;
  return member.get<std::vector<std::string>>();
}

/// How long a write waits for the lock. Others hold it for milliseconds, unless they were stopped meanwhile.
constexpr std::chrono::milliseconds lockPatience(500);

/// What is larger, or nested deeper, was not written by this program; reading it, or writing it again, would
/// take the memory or the stack.
constexpr long mostBytes = 64L << 20;
constexpr int mostLevels = 100;

/// Holds the lock that all writers of a file share. Where it can't be had the write goes on without it.
class WriterLock {
 public:
  WriterLock(const std::filesystem::path& file, std::chrono::milliseconds patience)
      : descriptor_(open((file.string() + ".lock").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600)) {
    if (descriptor_ < 0) return;
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!(isHeld_ = flock(descriptor_, LOCK_EX | LOCK_NB) == 0) && errno == EWOULDBLOCK) {
      isTaken_ = std::chrono::steady_clock::now() >= end;
      if (isTaken_) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  ~WriterLock() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  bool isHeld() const { return isHeld_; }
  /// Whether another writer kept it all the time.
  bool isTaken() const { return isTaken_; }
  WriterLock(const WriterLock&) = delete;
  WriterLock& operator=(const WriterLock&) = delete;

 private:
  int descriptor_;
  bool isHeld_ = false;
  bool isTaken_ = false;
};

void makePrivateFolder(const std::filesystem::path& folder) {
  constexpr mode_t everyMode = 07777, privateMode = 0700;
  // Nothing is touched that is right: each change of a folder is work for the disk.
  struct stat status {};
  if (stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
      (status.st_mode & everyMode) == privateMode)
    return;
  std::error_code ignored;  // What fails here fails again, and is logged, when the file is written.
  std::filesystem::create_directories(folder.parent_path(), ignored);
  mkdir(folder.c_str(), privateMode);
  chmod(folder.c_str(), privateMode);
}

}  // namespace

std::filesystem::path FileUserDefaults::defaultFile() {
  return configFolder() / "lumiscan" / "preferences.json";
}

FileUserDefaults::FileUserDefaults(std::filesystem::path file) : file_(std::move(file)), content_(file_) {}

std::optional<DefaultsValue> FileUserDefaults::object(std::string_view key) const {
  const std::lock_guard lock(mutex_);
  if (const auto pending = unsaved_.find(key); pending != unsaved_.end())
    return pending->second ? decoded(*pending->second) : std::nullopt;
  reload();
  const auto member = document_.find(std::string(key));
  return member == document_.end() ? std::nullopt : decoded(*member);
}

void FileUserDefaults::setObject(std::string_view key, DefaultsValue value) { change(key, encoded(value)); }

void FileUserDefaults::removeObject(std::string_view key) { change(key, std::nullopt); }

void FileUserDefaults::change(std::string_view key, std::optional<json> value) {
  const std::lock_guard lock(mutex_);
  unsaved_.insert_or_assign(std::string(key), std::move(value));
  if (save()) unsaved_.clear();
}

bool FileUserDefaults::reload() const {
  struct stat status {};
  if (stat(file_.c_str(), &status) != 0) {
    document_ = json::object();
    stamp_.reset();
    return true;
  }
  const Stamp stamp{status.st_dev, status.st_ino, status.st_size, status.st_ctim};
  if (stamp_ == stamp) return true;
  stamp_.reset();

  if (S_ISREG(status.st_mode) && status.st_size > mostBytes) {
    document_ = json::object();
    setAside("are too large");
    return true;
  }
  QFile file(file_);
  QByteArray text;
  if (S_ISREG(status.st_mode) && file.open(QIODevice::ReadOnly)) text = file.readAll();
  if (!file.isOpen() || file.error() != QFileDevice::NoError) {
    if (!std::exchange(unreadable_, true)) log().error("preferences can't be read");
    return false;
  }
  unreadable_ = false;
  stamp_ = stamp;
  bool tooDeep = false;
  const auto isShallow = [&tooDeep](int depth, json::parse_event_t, json&) {
    tooDeep = tooDeep || depth > mostLevels;
    return !tooDeep;
  };
  json parsed = json::parse(text.begin(), text.end(), isShallow, /*allow_exceptions=*/false);
  const bool isUsable = !tooDeep && parsed.is_object();
  document_ = isUsable ? std::move(parsed) : json::object();
  if (isUsable) return true;
  setAside("can't be parsed");
  return content_.takeEarlierVersion() ? reload() : true;
}

void FileUserDefaults::setAside(const std::string& problem) const {
  const std::filesystem::path file = content_.place();
  std::filesystem::path aside = file.string() + ".unreadable";
  for (int i = 2; std::filesystem::exists(aside); ++i)
    aside = file.string() + ".unreadable-" + std::to_string(i);
  std::error_code error;
  std::filesystem::rename(file, aside, error);
  chmod(aside.c_str(), 0600);  // It may hold captures, and come from elsewhere.
  log().error(
      "preferences " + problem + "; " +
      (error ? "they can't be set aside: " + error.message() : "kept as " + aside.filename().string()));
}

bool FileUserDefaults::save() {
  makePrivateFolder(file_.parent_path());
  // A writer that was stopped costs the time once, not with every write.
  const WriterLock writerLock(file_, lockIsTaken_ ? std::chrono::milliseconds(0) : lockPatience);
  if (writerLock.isTaken() && !lockIsTaken_) log().error("another program holds the preferences' lock");
  lockIsTaken_ = writerLock.isTaken();
  if (!reload()) return false;
  if (writerLock.isHeld() && !std::exchange(othersRemoved_, true)) content_.removeOtherVersions();
  json next = document_;
  for (const auto& [key, value] : unsaved_) {
    if (value)
      next[key] = *value;
    else
      next.erase(key);
  }
  const std::string text = next.dump(2, ' ', false, json::error_handler_t::replace) + "\n";

  if (const auto problem = content_.takeSyncProblem())
    log().error("preferences may not be on the disk: " + *problem);
  const auto problem = content_.replace(text);
  if (problem) log().error("preferences can't be written: " + *problem);
  return !problem;
}

}  // namespace lumiscan::desktop

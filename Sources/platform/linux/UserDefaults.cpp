#include "platform/linux/UserDefaults.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <QFile>
#include <QSaveFile>
#include <string>
#include <utility>

#include "platform/Logger.h"
#include "platform/linux/ConfigFolder.h"

namespace lumiscan::desktop {

namespace {

using nlohmann::json;
using platform::Data;
using platform::DefaultsValue;

const platform::Logger& log() {
  static const platform::Logger logger("com.varnholt.Lumiscan", "preferences");
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

/// The document of a preferences file; discarded when it isn't JSON, or nests so deeply that copying it and
/// writing it, which go down its levels by recursion, could overflow the stack.
json parsedDocument(const QByteArray& text) {
  constexpr int mostLevels = 100;
  bool isTooDeep = false;
  json document = json::parse(
      text.begin(), text.end(),
      [&isTooDeep](int depth, json::parse_event_t, const json&) {
        isTooDeep = isTooDeep || depth > mostLevels;
        return !isTooDeep;  // Nothing further is kept.
      },
      /*allow_exceptions=*/false);
  return isTooDeep ? json(json::value_t::discarded) : document;
}

/// Holds the lock that all writers of a file share. Where it can't be had the write goes on without it.
class WriterLock {
 public:
  explicit WriterLock(const std::filesystem::path& file)
      : descriptor_(open((file.string() + ".lock").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600)) {
    if (descriptor_ >= 0) flock(descriptor_, LOCK_EX);
  }
  ~WriterLock() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  bool isHeld() const { return descriptor_ >= 0; }
  WriterLock(const WriterLock&) = delete;
  WriterLock& operator=(const WriterLock&) = delete;

 private:
  int descriptor_;
};

void makePrivateFolder(const std::filesystem::path& folder) {
  std::error_code ignored;  // What fails here fails again, and is logged, when the file is written.
  std::filesystem::create_directories(folder.parent_path(), ignored);
  mkdir(folder.c_str(), 0700);
  chmod(folder.c_str(), 0700);
}

/// Removes what writers that were killed have left: files of the preferences' name and six more characters.
/// Precondition: nobody else writes.
void removeUnfinished(const std::filesystem::path& file) {
  constexpr std::size_t added = 7;  // The dot with them.
  const std::string prefix = file.filename().string() + ".";
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(file.parent_path(), ignored)) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with(prefix) && name.size() == file.filename().string().size() + added)
      std::filesystem::remove(entry.path(), ignored);
  }
}

}  // namespace

std::filesystem::path FileUserDefaults::defaultFile() {
  return configFolder() / "lumiscan" / "preferences.json";
}

FileUserDefaults::FileUserDefaults(std::filesystem::path file) : file_(std::move(file)) {}

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

void FileUserDefaults::reload() const {
  struct stat status {};
  if (stat(file_.c_str(), &status) != 0) {
    document_ = json::object();
    stamp_.reset();
    return;
  }
  const Stamp stamp{status.st_dev, status.st_ino, status.st_size, status.st_mtim};
  if (stamp_ == stamp) return;
  stamp_ = stamp;
  document_ = json::object();

  QFile file(file_);
  if (!S_ISREG(status.st_mode) || !file.open(QIODevice::ReadOnly)) {
    log().error("preferences can't be read");
    return;
  }
  const QByteArray text = file.readAll();
  json parsed = parsedDocument(text);
  if (parsed.is_object())
    document_ = std::move(parsed);
  else
    setAside();
}

void FileUserDefaults::setAside() const {
  std::filesystem::path aside = file_.string() + ".unreadable";
  for (int i = 2; std::filesystem::exists(aside); ++i)
    aside = file_.string() + ".unreadable-" + std::to_string(i);
  std::error_code error;
  std::filesystem::rename(file_, aside, error);
  chmod(aside.c_str(), 0600);  // It may hold captures, and come from elsewhere.
  log().error("preferences can't be parsed; " + (error ? "they can't be set aside: " + error.message()
                                                       : "kept as " + aside.filename().string()));
}

bool FileUserDefaults::save() {
  makePrivateFolder(file_.parent_path());
  const WriterLock writerLock(file_);
  if (writerLock.isHeld() && !std::exchange(unfinishedRemoved_, true)) removeUnfinished(file_);
  reload();
  json next = document_;
  for (const auto& [key, value] : unsaved_) {
    if (value)
      next[key] = *value;
    else
      next.erase(key);
  }
  const std::string text = next.dump(2, ' ', false, json::error_handler_t::replace) + "\n";

  QSaveFile file(QString::fromStdString(file_.string()));
  const bool written =
      file.open(QIODevice::WriteOnly) &&
      file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
      file.write(text.data(), static_cast<qint64>(text.size())) == static_cast<qint64>(text.size()) &&
      file.commit();
  if (!written) log().error("preferences can't be written: " + file.errorString().toStdString());
  return written;
}

}  // namespace lumiscan::desktop

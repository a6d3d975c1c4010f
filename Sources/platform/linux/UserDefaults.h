#pragma once

#include <ctime>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>

#include "platform/UserDefaults.h"
#include "platform/linux/ReplacedFile.h"

namespace lumiscan::desktop {

/// The preferences in one JSON file, `preferences.json`: an object with a member a key. Booleans, numbers,
/// strings and lists of strings are what they are in JSON; data is an object `{"data": BASE64}`.
///
/// The file is replaced as a whole and atomically (`ReplacedFile`), with mode 0600 in a folder of mode 0700,
/// without waiting for the disk. Each write first reads what is there, under a lock that all instances of the
/// program share, so two of them never lose each other's keys; members that this program doesn't know are
/// kept. A file that can't be parsed, or is far larger than this program's, is set aside as
/// `preferences.json.unreadable`; where a power loss came before the disk had it, the version before takes
/// its place. One that can't be read is left alone, and what is set meanwhile lives in memory. A lock that
/// isn't given free is waited for half a second.
class FileUserDefaults : public platform::UserDefaults {
 public:
  explicit FileUserDefaults(std::filesystem::path file);

  /// `$XDG_CONFIG_HOME/lumiscan/preferences.json`, with `~/.config` for an unset variable.
  static std::filesystem::path defaultFile();

  std::optional<platform::DefaultsValue> object(std::string_view key) const override;
  void setObject(std::string_view key, platform::DefaultsValue value) override;
  void removeObject(std::string_view key) override;

 private:
  /// Tells one version of the file from another: each replacement is a new inode.
  struct Stamp {
    unsigned long device = 0;
    unsigned long inode = 0;
    long size = 0;
    timespec changed{};  // The status too, so that a mode that was mended counts.
    friend bool operator==(const Stamp& a, const Stamp& b) {
      return a.device == b.device && a.inode == b.inode && a.size == b.size &&
             a.changed.tv_sec == b.changed.tv_sec && a.changed.tv_nsec == b.changed.tv_nsec;
    }
  };

  void change(std::string_view key, std::optional<nlohmann::json> value);
  /// False for a file that can't be read, which mustn't be written over: the document is the last one read.
  bool reload() const;
  void setAside(const std::string& problem) const;
  bool save();

  const std::filesystem::path file_;
  ReplacedFile content_;
  mutable std::mutex mutex_;
  mutable nlohmann::json document_ = nlohmann::json::object();
  mutable std::optional<Stamp> stamp_;
  mutable bool unreadable_ = false;
  bool lockIsTaken_ = false;
  bool othersRemoved_ = false;
  /// What couldn't be written yet: the new value, or nothing for a removed key.
  std::map<std::string, std::optional<nlohmann::json>, std::less<>> unsaved_;
};

}  // namespace lumiscan::desktop

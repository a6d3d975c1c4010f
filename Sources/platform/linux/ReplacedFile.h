#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/Worker.h"

namespace lumiscan::desktop {

/// A private file that is replaced as a whole and atomically, without waiting for the disk. A new version is
/// the kernel's at once, which the death of this process doesn't undo; a thread then brings it to the disk.
/// Until it is there the versions before stay beside it, as NAME and six more characters, since after a power
/// loss a file whose name is on the disk may still be without its content.
///
/// One thread at a time. Writers of several processes exclude each other themselves.
class ReplacedFile {
 public:
  explicit ReplacedFile(std::filesystem::path name);
  /// Waits a moment for the thread. What it doesn't finish is the kernel's to write, and the next writer's to
  /// remove.
  ~ReplacedFile();
  ReplacedFile(const ReplacedFile&) = delete;
  ReplacedFile& operator=(const ReplacedFile&) = delete;

  /// Where the file is, or would be: behind the links that its name may lead over.
  std::filesystem::path place() const;

  /// Makes `content` the file's, with mode 0600. The problem, if there is one, with the file as before. It
  /// waits for the disk only for the first version of all, where the disk is many versions behind, and where
  /// the file system can't exchange two files.
  std::optional<std::string> replace(std::string_view content);
  /// Puts the newest of the versions before in the place of a file that isn't there; whether there was one.
  bool takeEarlierVersion() const;
  /// Removes the versions before, and what writers that were killed have left. Precondition: nobody else
  /// writes.
  void removeOtherVersions() const;

  /// What kept the thread from bringing a version to the disk, told once.
  std::optional<std::string> takeSyncProblem();

 private:
  struct State;
  void startSync(const std::filesystem::path& file);

  const std::filesystem::path name_;
  const std::shared_ptr<State> state_;
  Worker worker_;
};

}  // namespace lumiscan::desktop

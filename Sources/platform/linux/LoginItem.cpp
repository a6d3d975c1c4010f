#include "platform/linux/LoginItem.h"

#include <QSaveFile>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/Application.h"
#include "platform/linux/ConfigFolder.h"

namespace lumiscan::desktop {

namespace {

namespace fs = std::filesystem;
using Keys = std::map<std::string, std::string, std::less<>>;

std::string trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \t\r") - first + 1));
}

/// The keys of the entry's main group; none when there is no such file.
Keys keysIn(const fs::path& file) {
  Keys keys;
  std::ifstream stream(file);
  bool isInGroup = false;
  for (std::string line; std::getline(stream, line);) {
    line = trimmed(line);
    if (line.starts_with('[')) isInGroup = line == "[Desktop Entry]";
    const auto equals = line.find('=');
    if (isInGroup && !line.starts_with('#') && equals != std::string::npos)
      keys.emplace(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
  }
  return keys;
}

// A command line in an entry is written in three layers: percent signs begin field codes, a quoted argument
// has backslashes before some characters, and a text value has escapes of its own.

std::string commandLine(const std::string& program) {
  std::string command = "\"";
  for (const char c : program) {
    if (c == '%') command += '%';
    if (std::string_view("\"`$\\").find(c) != std::string_view::npos) command += '\\';
    command += c;
  }
  command += '"';
  std::string value;
  for (const char c : command) {
    if (c == '\n')
      value += "\\n";
    else if (c == '\\')
      value += "\\\\";
    else
      value += c;
  }
  return value;
}

std::string withoutTextEscapes(std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '\\' || i + 1 == value.size()) {
      text += value[i];
      continue;
    }
    const char escaped = value[++i];
    text += escaped == 's'   ? ' '
            : escaped == 'n' ? '\n'
            : escaped == 't' ? '\t'
            : escaped == 'r' ? '\r'
                             : escaped;
  }
  return text;
}

/// What a command line starts: its first argument.
std::string programOf(std::string_view value) {
  const std::string command = withoutTextEscapes(value);
  std::string program;
  bool isQuoted = false;
  for (std::size_t i = 0; i < command.size(); ++i) {
    char c = command[i];
    if (c == '"') {
      isQuoted = !isQuoted;
      continue;
    }
    if (c == ' ' && !isQuoted) break;
    const bool isEscape = (c == '\\' && isQuoted) || c == '%';
    if (isEscape && i + 1 < command.size()) c = command[++i];
    program += c;
  }
  return program;
}

bool startsProgram(const Keys& keys, const fs::path& program) {
  const auto command = keys.find("Exec");
  return command != keys.end() && programOf(command->second) == program.string();
}

bool isSet(const Keys& keys, std::string_view key, std::string_view value) {
  const auto found = keys.find(key);
  return found != keys.end() && found->second == value;
}

}  // namespace

AutostartEntry::AutostartEntry(fs::path file, fs::path program)
    : file_(std::move(file)), program_(std::move(program)) {}

AutostartEntry AutostartEntry::ofThisProgram() {
  std::error_code error;
  return {configFolder() / "autostart" / (std::string(platform::applicationID) + ".desktop"),
          fs::read_symlink("/proc/self/exe", error)};
}

platform::LoginItemStatus AutostartEntry::status() const {
  const Keys keys = keysIn(file_);
  const bool isEnabled = startsProgram(keys, program_) && !isSet(keys, "Hidden", "true") &&
                         !isSet(keys, "X-GNOME-Autostart-enabled", "false");
  return isEnabled ? platform::LoginItemStatus::enabled : platform::LoginItemStatus::notRegistered;
}

bool AutostartEntry::registerItem() {
  if (status() == platform::LoginItemStatus::enabled) return true;
  if (program_.empty()) return false;
  std::error_code error;
  fs::create_directories(file_.parent_path(), error);
  const std::string text =
      "[Desktop Entry]\n"
      "Type=Application\n"
      "Name=Lumiscan\n"
      "Comment=Captures text from the screen\n"
      "Exec=" +
      commandLine(program_.string()) +
      "\n"
      "Terminal=false\n";
  QSaveFile file(QString::fromStdString(file_.string()));
  return file.open(QIODevice::WriteOnly) &&
         file.write(text.data(), static_cast<qint64>(text.size())) == static_cast<qint64>(text.size()) &&
         file.flush() && file.commit();  // The commit takes no notice of a buffer that can't be written.
}

bool AutostartEntry::unregisterItem() {
  std::error_code error;
  if (!startsProgram(keysIn(file_), program_)) return true;
  fs::remove(file_, error);
  return !error;
}

}  // namespace lumiscan::desktop

// Arbitrary bytes as the preferences file: whatever it holds, a value written is read again by the next start
// of the program, and the other members of a file that can be read stay.

#include <filesystem>
#include <fstream>

#include "fuzz/Target.h"
#include "platform/linux/UserDefaults.h"
#include "support/SimulatedDesktop.h"
#include "support/TemporaryFolder.h"

namespace lumiscan::fuzzing {
namespace {

nlohmann::json parsed(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return nlohmann::json::parse(stream, nullptr, /*allow_exceptions=*/false);
}

void useFile(const std::filesystem::path& file) {
  constexpr std::string_view keys[] = {"playSound", "recognitionLanguages", "captureHistory", "lastSelection",
                                       "hotkey.captureText"};
  const testing::SimulatedDesktop desktop;  // Where the store logs.
  desktop::FileUserDefaults defaults(file);
  for (const std::string_view key : keys) defaults.object(key);

  // A file that the store could not read is no longer here.
  const nlohmann::json before = std::filesystem::exists(file) ? parsed(file) : nlohmann::json::object();
  const std::vector<std::string> languages{"de-DE", "en-US"};
  defaults.setObject("recognitionLanguages", languages);
  const desktop::FileUserDefaults next(file);
  require(next.stringArrayForKey("recognitionLanguages") == languages);
  nlohmann::json after = parsed(file);
  require(after.is_object());
  nlohmann::json expected = before;
  expected.erase("recognitionLanguages");
  after.erase("recognitionLanguages");
  require(after == expected);
}

}  // namespace

void use(std::string_view input) {
  // One for each input, so that no input depends on those before it.
  const testing::TemporaryFolder folder;
  const std::filesystem::path file = folder.path() / "preferences.json";
  std::ofstream(file, std::ios::binary) << input;
  useFile(file);
}

}  // namespace lumiscan::fuzzing

// The preferences' file: what is on the disk, and what happens when it isn't what it should be.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <sstream>
#include <thread>

#include "platform/linux/UserDefaults.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan::testing {
namespace {

using platform::Data;
using platform::DefaultsValue;
namespace fs = std::filesystem;

class PreferencesFile : public ::testing::Test {
 public:
  PreferencesFile() {
    std::string name = fs::temp_directory_path() / "lumiscan-test-XXXXXX";
    base_ = mkdtemp(name.data());
    file_ = base_ / "config" / "lumiscan" / "preferences.json";
  }
  ~PreferencesFile() override { fs::remove_all(base_); }

 protected:
  void write(const std::string& text) {
    fs::create_directories(file_.parent_path());
    std::ofstream(file_) << text;
  }
  static std::string content(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
  }
  static unsigned mode(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 0777;
  }
  std::size_t errorLines() {
    std::size_t count = 0;
    for (const auto& line : simulated_.logSink().lines) count += line.level == platform::LogLevel::error;
    return count;
  }

  SimulatedDesktop simulated_;  // For its log.
  fs::path base_;
  fs::path file_;
};

TEST_F(PreferencesFile, IsPrivateAndReadable) {
  desktop::FileUserDefaults defaults(file_);
  defaults.setObject("flag", true);
  defaults.setObject("number", 1.5);
  defaults.setObject("text", std::string("a \"quoted\" wörd"));
  defaults.setObject("list", std::vector<std::string>{"de-DE", "en-US"});
  defaults.setObject("data", Data{std::string("\0\xFF{}", 4)});
  const auto expectPrivate = [this] {
    EXPECT_EQ(mode(file_), 0600U);
    EXPECT_EQ(mode(file_.parent_path()), 0700U);
  };
  expectPrivate();
  EXPECT_EQ(nlohmann::json::parse(content(file_)),
            nlohmann::json::parse(R"({"flag": true, "number": 1.5, "text": "a \"quoted\" wörd",
                                      "list": ["de-DE", "en-US"], "data": {"data": "AP97fQ=="}})"));
  chmod(file_.c_str(), 0644);
  chmod(file_.parent_path().c_str(), 0755);
  defaults.setObject("text", std::string("private"));
  expectPrivate();
}

TEST_F(PreferencesFile, SeesWhatIsChangedByHandAndKeepsWhatItDoesNotKnow) {
  desktop::FileUserDefaults defaults(file_);
  EXPECT_EQ(defaults.object("flag"), std::nullopt);
  write(R"({"flag": false, "later": {"version": 2}, "mixed": ["a", 1], "nothing": null,
            "broken": {"data": "=not base64="}})");
  EXPECT_EQ(defaults.object("flag"), DefaultsValue(false));
  for (const char* key : {"later", "mixed", "nothing", "broken"})
    EXPECT_EQ(defaults.object(key), std::nullopt) << key;
  defaults.setObject("flag", true);
  const auto document = nlohmann::json::parse(content(file_));
  EXPECT_EQ(document["later"]["version"], 2);
  EXPECT_EQ(document["flag"], true);
  fs::remove(file_);
  EXPECT_EQ(defaults.object("flag"), std::nullopt);
}

TEST_F(PreferencesFile, SetsAsideWhatCannotBeParsed) {
  constexpr std::size_t levels = 200'000;
  const std::string deep = R"({"deep": )" + std::string(levels, '[') + std::string(levels, ']') + "}";
  for (const std::string& text : {std::string("{\"cut\": "), std::string("[1, 2]"), std::string(), deep}) {
    SCOPED_TRACE(text.substr(0, 20));
    write(text);
    const std::size_t before = errorLines();
    desktop::FileUserDefaults defaults(file_);
    EXPECT_EQ(defaults.object("flag"), std::nullopt);
    EXPECT_EQ(errorLines(), before + 1);
    defaults.setObject("flag", true);
    EXPECT_EQ(defaults.object("flag"), DefaultsValue(true));
  }
  EXPECT_EQ(content(file_.string() + ".unreadable"), "{\"cut\": ");
  EXPECT_EQ(mode(file_.string() + ".unreadable"), 0600U);
  EXPECT_EQ(content(file_.string() + ".unreadable-2"), "[1, 2]");
  EXPECT_EQ(content(file_.string() + ".unreadable-3"), "");
  EXPECT_EQ(content(file_.string() + ".unreadable-4"), deep);
}

TEST_F(PreferencesFile, LivesOnInMemoryWhereItCannotBeWritten) {
  // A folder in the file's place can be neither read nor replaced, not even by root.
  fs::create_directories(file_ / "in the way");
  desktop::FileUserDefaults defaults(file_);
  defaults.setObject("flag", true);
  defaults.setObject("gone", std::string("x"));
  defaults.removeObject("gone");
  EXPECT_EQ(defaults.object("flag"), DefaultsValue(true));
  EXPECT_EQ(defaults.object("gone"), std::nullopt);
  EXPECT_GE(errorLines(), 1U);
  // What couldn't be written goes out with the next write that can.
  fs::remove_all(file_);
  defaults.setObject("number", 2.0);
  EXPECT_EQ(nlohmann::json::parse(content(file_)), nlohmann::json::parse(R"({"flag": true, "number": 2.0})"));
}

TEST_F(PreferencesFile, LosesNoKeyOfTwoWriters) {
  constexpr int writes = 50;
  const auto writeAll = [this](const std::string& prefix) {
    desktop::FileUserDefaults defaults(file_);
    for (int i = 0; i < writes; ++i) defaults.setObject(prefix + std::to_string(i), double(i));
  };
  std::thread other(writeAll, "b");
  writeAll("a");
  other.join();
  desktop::FileUserDefaults defaults(file_);
  for (int i = 0; i < writes; ++i)
    for (const std::string prefix : {"a", "b"})
      EXPECT_EQ(defaults.object(prefix + std::to_string(i)), DefaultsValue(double(i))) << prefix << i;
}

TEST_F(PreferencesFile, RepairsInvalidText) {
  desktop::FileUserDefaults defaults(file_);
  defaults.setObject("text", std::string("a\xFFz"));
  EXPECT_EQ(defaults.object("text"), DefaultsValue(std::string("a\xEF\xBF\xBDz")));
}

}  // namespace
}  // namespace lumiscan::testing

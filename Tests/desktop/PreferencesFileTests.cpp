// The preferences' file: what is on the disk, and what happens when it isn't what it should be.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include "desktop/PrivateDesktop.h"
#include "output/CaptureRecord.h"
#include "platform/linux/UserDefaults.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan::testing {
namespace {

using platform::Data;
using platform::DefaultsValue;
namespace fs = std::filesystem;

class PreferencesFile : public ::testing::Test {
 protected:
  void write(const std::string& text) {
    fs::create_directories(file_.parent_path());
    std::ofstream(file_) << text;
  }
  static nlohmann::json documentIn(const fs::path& path) { return nlohmann::json::parse(contentOf(path)); }
  static unsigned mode(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 0777;
  }
  long filesInFolder() const { return std::distance(fs::directory_iterator(file_.parent_path()), {}); }
  std::ptrdiff_t errorLines() {
    return std::ranges::count_if(simulated_.logSink().lines,
                                 [](const auto& line) { return line.starts_with("preferences error: "); });
  }

  SimulatedDesktop simulated_;  // For its log.
  const TemporaryFolder folder_;
  const fs::path file_ = folder_.path() / "config" / "lumiscan" / "preferences.json";
};

TEST_F(PreferencesFile, IsPrivateReadableAndValid) {
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
  EXPECT_EQ(documentIn(file_),
            nlohmann::json::parse(R"({"flag": true, "number": 1.5, "text": "a \"quoted\" wörd",
                                      "list": ["de-DE", "en-US"], "data": {"data": "AP97fQ=="}})"));
  chmod(file_.c_str(), 0644);
  chmod(file_.parent_path().c_str(), 0755);
  defaults.setObject("text", std::string("a\xFFz"));
  expectPrivate();
  EXPECT_EQ(defaults.object("text"), DefaultsValue(std::string("a\uFFFDz")));
}

TEST_F(PreferencesFile, SeesWhatIsChangedByHandAndKeepsWhatItDoesNotKnow) {
  desktop::FileUserDefaults defaults(file_);
  EXPECT_EQ(defaults.object("flag"), std::nullopt);
  write(R"({"flag": false, "later": {"version": 2}, "mixed": ["a", 1], "nothing": null,
            "broken": {"data": "=not base64="}})");
  EXPECT_EQ(defaults.object("flag"), DefaultsValue(false));
  for (const char* key : {"later", "mixed", "nothing", "broken"})
    EXPECT_EQ(defaults.object(key), std::nullopt) << key;
  // The same file with as many bytes: all that tells is the time, which doesn't count every moment.
  EXPECT_TRUE(waitUntil([&] {
    write(R"({"flag": 12345, "later": {"version": 2}, "mixed": ["a", 1], "nothing": null,
            "broken": {"data": "=not base64="}})");
    return defaults.object("flag") == DefaultsValue(12345.0);
  }));
  defaults.setObject("flag", true);
  const auto document = documentIn(file_);
  EXPECT_EQ(document["later"]["version"], 2);
  EXPECT_EQ(document["flag"], true);
  fs::remove(file_);
  EXPECT_EQ(defaults.object("flag"), std::nullopt);
}

TEST_F(PreferencesFile, SetsAsideWhatCannotBeParsed) {
  // The last two can be parsed, but not held or written again.
  const std::string deep = R"({"deep": )" + std::string(200'000, '[') + std::string(200'000, ']') + "}";
  const std::string large = R"({"large": ")" + std::string(100U << 20, 'x') + "\"}";
  for (const std::string& text :
       {std::string("{\"cut\": "), std::string("[1, 2]"), std::string(), deep, large}) {
    SCOPED_TRACE(text.substr(0, 20));
    write(text);
    const auto before = errorLines();
    desktop::FileUserDefaults defaults(file_);
    EXPECT_EQ(defaults.object("flag"), std::nullopt);
    EXPECT_EQ(errorLines(), before + 1);
    defaults.setObject("flag", true);
    EXPECT_EQ(defaults.object("flag"), DefaultsValue(true));
  }
  EXPECT_EQ(contentOf(file_.string() + ".unreadable"), "{\"cut\": ");
  EXPECT_EQ(mode(file_.string() + ".unreadable"), 0600U);
  EXPECT_EQ(contentOf(file_.string() + ".unreadable-2"), "[1, 2]");
  EXPECT_EQ(contentOf(file_.string() + ".unreadable-3"), "");
  EXPECT_EQ(fs::file_size(file_.string() + ".unreadable-5"), large.size());
}

TEST_F(PreferencesFile, LivesOnInMemoryWhereItCannotBeWritten) {
  // Nobody can make a folder there, not even root.
  desktop::FileUserDefaults nowhere("/proc/self/lumiscan/preferences.json");
  nowhere.setObject("flag", true);
  EXPECT_EQ(nowhere.object("flag"), DefaultsValue(true));
  EXPECT_EQ(errorLines(), 1);
  // Nor can a folder in the file's place be read or replaced.
  fs::create_directories(file_ / "in the way");
  desktop::FileUserDefaults defaults(file_);
  defaults.setObject("flag", true);
  defaults.setObject("gone", std::string("x"));
  defaults.removeObject("gone");
  EXPECT_EQ(defaults.object("flag"), DefaultsValue(true));
  EXPECT_EQ(defaults.object("gone"), std::nullopt);
  EXPECT_EQ(errorLines(), 2);
  // What couldn't be written goes out with the next write that can.
  fs::remove_all(file_);
  defaults.setObject("number", 2.0);
  EXPECT_EQ(documentIn(file_), nlohmann::json::parse(R"({"flag": true, "number": 2.0})"));
}

TEST_F(PreferencesFile, LeavesAloneWhatCannotBeRead) {
  write(R"({"history": "kept"})");
  desktop::FileUserDefaults defaults(file_);
  EXPECT_EQ(defaults.object("history"), DefaultsValue(std::string("kept")));
  write(R"({"history": "newer"})");
  // A sanitizer needs a descriptor, too, to learn the types of what logs: now.
  platform::Logger("test").info("before");
  // Modes don't keep root from reading, but nobody can open a file without a descriptor.
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  const rlimit none{0, before.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  defaults.setObject("flag", true);
  EXPECT_EQ(defaults.object("history"), DefaultsValue(std::string("kept")));
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(errorLines(), 1);
  EXPECT_EQ(contentOf(file_), R"({"history": "newer"})");
  defaults.setObject("number", 2.0);
  EXPECT_EQ(documentIn(file_), nlohmann::json::parse(R"({"flag": true, "history": "newer", "number": 2.0})"));
}

TEST_F(PreferencesFile, AFullDiskLeavesTheLastStateAndNothingElse) {
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  // Less than the buffer that a write goes through, and more.
  for (const std::size_t length : {100U, 200'000U}) {
    SCOPED_TRACE(length);
    fs::remove(file_);
    desktop::FileUserDefaults defaults(file_);
    defaults.setObject("flag", true);
    const std::string complete = contentOf(file_);
    const DefaultsValue text = std::string(length, 'x');
    const auto errors = errorLines();
    const rlimit little{complete.size(), before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &little);
    defaults.setObject("text", text);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(errorLines(), errors + 1);
    EXPECT_EQ(contentOf(file_), complete);
    EXPECT_EQ(filesInFolder(), 2) << "no more than the lock";
    EXPECT_EQ(defaults.object("text"), text);
  }
  std::signal(SIGXFSZ, handler);
}

/// Preferences whose thread can't be started, so that no version ever reaches the disk by it.
std::unique_ptr<desktop::FileUserDefaults> defaultsWithoutThread(const fs::path& file) {
  pthread_attr_t before, hugeStacks;
  pthread_getattr_default_np(&before);
  pthread_getattr_default_np(&hugeStacks);
  pthread_attr_setstacksize(&hugeStacks, std::size_t{1} << 50);
  EXPECT_EQ(pthread_setattr_default_np(&hugeStacks), 0);
  auto defaults = std::make_unique<desktop::FileUserDefaults>(file);
  pthread_setattr_default_np(&before);
  return defaults;
}

TEST_F(PreferencesFile, KeepsTheVersionBeforeUntilTheDiskHasTheNewOne) {
  const auto defaults = defaultsWithoutThread(file_);
  defaults->setObject("number", 1.0);
  const fs::path earlier = file_.string() + ".x7Yz0Q";
  std::ofstream(earlier) << R"({"number": 0})";
  fs::last_write_time(earlier, fs::last_write_time(file_) - std::chrono::hours(1));
  defaults->setObject("number", 2.0);
  EXPECT_EQ(documentIn(file_)["number"], 2);
  // What a power loss can leave of a file that the disk doesn't have yet.
  fs::resize_file(file_, 0);
  EXPECT_EQ(desktop::FileUserDefaults(file_).object("number"), DefaultsValue(1.0));
  EXPECT_EQ(documentIn(file_)["number"], 1);
  // The next start has no use for others, nor for what a killed one left, once it writes.
  const fs::path unfinished = file_.string() + ".n1Ke4c", byHand = file_.string() + ".kept";
  std::ofstream(unfinished) << "{\"half";
  std::ofstream(byHand) << "{}";
  desktop::FileUserDefaults(file_).setObject("flag", true);
  EXPECT_EQ(documentIn(file_), nlohmann::json::parse(R"({"flag": true, "number": 1.0})"));
  EXPECT_FALSE(fs::exists(unfinished));
  EXPECT_TRUE(fs::exists(byHand));
  EXPECT_TRUE(waitUntil([this] { return filesInFolder() == 4; })) << "more than the lock and the empty one";
  EXPECT_EQ(contentOf(file_.string() + ".unreadable"), "");
}

TEST_F(PreferencesFile, KeepsFewVersionsWhereTheDiskNeverAnswers) {
  const auto defaults = defaultsWithoutThread(file_);
  for (int i = 0; i < 100; ++i) {
    defaults->setObject("number", double(i));
    ASSERT_EQ(documentIn(file_)["number"], i);
  }
  EXPECT_LT(filesInFolder(), 20);
}

TEST_F(PreferencesFile, FollowsALinkToAFileThatIsNotThereYet) {
  fs::create_directories(file_.parent_path());
  const fs::path elsewhere = folder_.path() / "elsewhere.json";
  fs::create_symlink(elsewhere, file_);
  desktop::FileUserDefaults defaults(file_);
  EXPECT_EQ(defaults.object("flag"), std::nullopt);
  defaults.setObject("flag", true);
  EXPECT_TRUE(fs::is_symlink(file_));
  EXPECT_EQ(documentIn(elsewhere), nlohmann::json::parse(R"({"flag": true})"));
  EXPECT_EQ(mode(elsewhere), 0600U);
}

TEST_F(PreferencesFile, WaitsForAStoppedWriterOnceAndNotForLong) {
  using std::chrono::steady_clock;
  desktop::FileUserDefaults defaults(file_);
  defaults.setObject("flag", true);
  const int held = open((file_.string() + ".lock").c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(flock(held, LOCK_EX), 0);
  const auto start = steady_clock::now();
  for (int i = 0; i < 20; ++i) defaults.setObject("number", double(i));
  EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(3));
  EXPECT_EQ(errorLines(), 1);
  EXPECT_EQ(desktop::FileUserDefaults(file_).object("number"), DefaultsValue(19.0));
  close(held);
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

// What is left when the program is killed while it stores captures: the last complete state, with every
// capture that was reported. LUMISCAN_KILLS says how often to kill it, 12 times by default.

/// Lets a process capture for a moment that differs each time, and kills it; the last capture it reported.
int captureAndKill(std::chrono::microseconds moment) {
  Process process({LUMISCAN_STORE_CAPTURES});
  const auto reports = [&process] { return process.standardOutput(); };
  // The moment counts from the first capture on.
  EXPECT_TRUE(waitUntil([&] { return !reports().empty(); }));
  std::this_thread::sleep_for(moment);
  process.signal(SIGKILL);
  EXPECT_EQ(process.waitForEnd(), 128 + SIGKILL) << "it ended by itself";
  const std::string all = reports();
  return all.empty() ? 0 : std::stoi(all.substr(all.rfind('\n', all.size() - 2) + 1));
}

TEST(Durability, AKilledProgramLeavesTheLastCompleteState) {
  const PrivateDesktop desktop;
  const char* wanted = std::getenv("LUMISCAN_KILLS");
  const int kills = wanted ? std::atoi(wanted) : 12;
  const auto file = desktop::FileUserDefaults::defaultFile();
  std::mt19937 random(1);
  std::uniform_int_distribution<int> microseconds(0, 20000);
  for (int i = 0; i < kills; ++i) {
    const int reported = captureAndKill(std::chrono::microseconds(microseconds(random)));
    const desktop::FileUserDefaults defaults(file);
    const auto stored = defaults.dataForKey("captureHistory");
    ASSERT_TRUE(stored);
    const auto records = decodedCaptureRecords(stored->bytes);
    ASSERT_TRUE(records && !records->empty()) << "a broken history";
    const int newest = std::stoi(records->front().text);
    EXPECT_GE(newest, reported) << "a reported capture is lost";
    for (std::size_t k = 0; k < records->size(); ++k)
      EXPECT_EQ((*records)[k].text, std::to_string(newest - static_cast<int>(k)));
    const std::string buffer = defaults.stringForKey("additiveClipboardBuffer").value_or("");
    const int appended = std::stoi(buffer.substr(buffer.rfind('\n') + 1));
    EXPECT_TRUE(appended == newest || appended == newest + 1) << appended << " and " << newest;
  }
  desktop::FileUserDefaults(file).setBool("flag", true);
  // What the last write replaced goes when the disk has the new version.
  EXPECT_TRUE(waitUntil([&] { return std::distance(fs::directory_iterator(file.parent_path()), {}) == 2; }))
      << "more than the preferences and the lock";
}

}  // namespace
}  // namespace lumiscan::testing

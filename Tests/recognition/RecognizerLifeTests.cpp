#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <iostream>
#include <iterator>
#include <thread>

#include "Pictures.h"
#include "ReadLines.h"
#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/FreeMemory.h"
#include "platform/linux/recognition/LanguageData.h"
#include "support/TemporaryFolder.h"

namespace lumiscan::desktop {
namespace {

namespace fs = std::filesystem;
using platform::Image;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

/// The heap as the program arranges it, before there are threads.
class ProgramHeap : public ::testing::Environment {
  void SetUp() override { keepFreeMemoryTogether(); }
};

const ::testing::Environment* const programHeap = ::testing::AddGlobalTestEnvironment(new ProgramHeap);

TEST(RecognizerLife, ThreadsAtOnceReadWhatOneAfterTheOtherDoes) {
  TesseractRecognizer recognizer;
  const std::vector<std::string> german{"Straße und Gärten"};
  std::vector<std::future<std::vector<std::string>>> results;
  for (int i = 0; i < 6; ++i)
    results.push_back(std::async(std::launch::async, [&, i] {
      return i % 2 == 0 ? linesOf(recognizer, pictureOf(paragraph))
                        : linesOf(recognizer, pictureOf(german), {"de-DE"});
    }));
  for (std::size_t i = 0; i < results.size(); ++i)
    EXPECT_THAT(results[i].get(), ElementsAreArray(i % 2 == 0 ? paragraph : german));
}

TEST(RecognizerLife, TheEngineStartsNoThreads) {
  TesseractRecognizer recognizer;
  const Image image = pictureOf(paragraph);
  const auto threadCount = [] {
    return std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator());
  };
  std::thread([&] {
    const auto before = threadCount();
    linesOf(recognizer, image);
    EXPECT_EQ(threadCount(), before);
  }).join();
}

TEST(RecognizerLife, PreparesInTheBackgroundAndReleases) {
  std::vector<std::function<void()>> tasks;
  TesseractRecognizer recognizer(
      {[&](std::function<void()> task) { tasks.push_back(std::move(task)); }, {}, {}});
  recognizer.prepare({"en-US"});
  recognizer.prepare({"en-GB"});
  ASSERT_EQ(tasks.size(), 1U) << "both need the same data";
  tasks.front()();
  recognizer.prepare({"en-US"});
  EXPECT_EQ(tasks.size(), 1U) << "the engine is there";
  EXPECT_THAT(linesOf(recognizer, pictureOf(paragraph)), ElementsAreArray(paragraph));
  recognizer.releaseUnused(0);
  recognizer.prepare({"en-US"});
  EXPECT_EQ(tasks.size(), 2U) << "the engine is gone";
  tasks.back()();

  TesseractRecognizer ownThreads;
  ownThreads.prepare({"en-US"});
  EXPECT_THAT(linesOf(ownThreads, pictureOf(paragraph)), ElementsAreArray(paragraph));
}

class DamagedData : public ::testing::Test {
 protected:
  const testing::TemporaryFolder temporary_;
  const fs::path folder_ = temporary_.path();
};

TEST_F(DamagedData, IsAnErrorAndNoCrash) {
  std::ifstream stream(LanguageData().folder() / "eng.traineddata", std::ios::binary);
  const std::string whole(std::istreambuf_iterator<char>(stream), {});
  ASSERT_GT(whole.size(), 100'000U);
  const auto size = whole.size();
  for (const std::size_t length : {std::size_t{0}, std::size_t{3}, std::size_t{100}, std::size_t{1000},
                                   size / 2, size * 9 / 10, size - 10'000, size - 500}) {
    std::ofstream(folder_ / "eng.traineddata", std::ios::binary | std::ios::trunc)
        .write(whole.data(), static_cast<std::streamsize>(length));
    TesseractRecognizer recognizer({{}, {}, folder_});
    recognizer.prepare({"en-US"});
    EXPECT_THAT(linesOf(recognizer, pictureOf(paragraph)), ElementsAre(HasSubstr("error: "))) << length;
  }
  // A file that can be opened and not read, not even by root.
  fs::remove(folder_ / "eng.traineddata");
  fs::create_symlink("/proc/self/mem", folder_ / "eng.traineddata");
  TesseractRecognizer recognizer({{}, {}, folder_});
  EXPECT_THAT(linesOf(recognizer, pictureOf(paragraph)), ElementsAre(HasSubstr("error: ")));
}

TEST_F(DamagedData, TheEnginesOwnMessagesGoNowhere) {
  ::testing::internal::CaptureStderr();
  EXPECT_FALSE(Engine::load({{"missing"}}, folder_).ok());
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(DamagedData, MissingLanguagesAreLoggedOnceAndTheOthersUsed) {
  std::vector<std::string> log;
  const TesseractRecognizer::Options options{
      {}, [&](std::string line) { log.push_back(std::move(line)); }, folder_};
  TesseractRecognizer recognizer(options);
  EXPECT_THAT(linesOf(recognizer, pictureOf(paragraph)), ElementsAre(HasSubstr("error: ")));
  EXPECT_THAT(linesOf(recognizer, pictureOf(paragraph), {}), ElementsAre(HasSubstr("error: ")));
  fs::create_symlink(LanguageData().folder() / "deu.traineddata", folder_ / "deu.traineddata");
  EXPECT_THAT(linesOf(recognizer, pictureOf({"Guten Morgen"}), {"en-US", "de-DE"}),
              ElementsAre("Guten Morgen"));
  EXPECT_THAT(linesOf(recognizer, pictureOf({"Guten Morgen"}), {}), ElementsAre("Guten Morgen"));
  EXPECT_THAT(log, ElementsAre(HasSubstr("en-US")));
}

TEST(RecognizerLife, TooLittleMemoryIsAnErrorAndTheNextImageIsRead) {
  const Image page = pictureOf(paragraph);
  // A child each, with so much address space beyond what it has.
  for (std::size_t mebibytes : {2U, 8U, 24U, 48U, 96U}) {
    const pid_t child = fork();
    if (child == 0) {
      TesseractRecognizer recognizer;
      std::size_t pages = 0;
      std::ifstream("/proc/self/statm") >> pages;
      rlimit before{};
      getrlimit(RLIMIT_AS, &before);
      const rlimit little{pages * static_cast<std::size_t>(getpagesize()) + (mebibytes << 20),
                          before.rlim_max};
      setrlimit(RLIMIT_AS, &little);
      linesOf(recognizer, page);
      setrlimit(RLIMIT_AS, &before);
      std::_Exit(linesOf(recognizer, page) == paragraph ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << mebibytes << " MiB: " << status;
  }
}

/// Of this process's own.
long kibibytesOfMemory() {
  std::ifstream status("/proc/self/status");
  long kibibytes = 0;
  for (std::string word; status >> word;)
    if (word == "RssAnon:") status >> kibibytes;
  return kibibytes;
}

TEST(RecognizerLife, WeighsAtRestAfterManyPicturesWhatItDidAfterOne) {
  std::vector<std::string> lines;
  for (int i = 0; i < 3; ++i) lines.insert(lines.end(), paragraph.begin(), paragraph.end());
  const Image page = pictureOf(lines);
  // A child, which has no engines of other tests.
  const pid_t child = fork();
  if (child == 0) {
    TesseractRecognizer recognizer;
    const auto read = [&] { return linesOf(recognizer, page, {"en-US", "de-DE"}); };
    read();
    recognizer.settle();
    const long before = kibibytesOfMemory();
    for (int round = 0; round < 4; ++round) {
      std::vector<std::thread> threads;
      for (int i = 0; i < 4; ++i) threads.emplace_back(read);
      for (std::thread& thread : threads) thread.join();
    }
    const long inUse = kibibytesOfMemory();
    recognizer.settle();
    const long after = kibibytesOfMemory();
    const bool isRight = inUse > before + 16384 && after < before + 4096 && read() == lines;
    if (!isRight) std::cerr << before << " KiB, " << inUse << " in use, " << after << " at rest\n";
    std::_Exit(isRight ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST(RecognizerLife, RefusesImagesThatAreTooLarge) {
  const auto pixels = std::make_shared<std::vector<std::uint32_t>>(20'000);
  const Image tall(1, 20'000, 4, platform::PixelFormat::xrgb,
                   {pixels, reinterpret_cast<const std::byte*>(pixels->data())});
  EXPECT_THAT(linesOf(tall), ElementsAre(HasSubstr("larger than")));
}

}  // namespace
}  // namespace lumiscan::desktop

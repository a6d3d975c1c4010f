#include "platform/linux/recognition/TextRecognizer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <iostream>
#include <iterator>
#include <thread>

#include "Pictures.h"
#include "platform/linux/drawing/BitmapContext.h"
#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/FreeMemory.h"
#include "platform/linux/recognition/LanguageData.h"
#include "support/TemporaryFolder.h"

namespace lumiscan::desktop {
namespace {

namespace fs = std::filesystem;
using platform::Color;
using platform::Image;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::vector<std::string> linesOf(TesseractRecognizer& recognizer, const Image& image,
                                 std::vector<std::string> languages = {"en-US"}) {
  const auto result =
      recognizer.perform({platform::RecognitionLevel::accurate, true, std::move(languages)}, image);
  if (!result.ok()) return {"error: " + result.error().text};
  std::vector<std::string> lines;
  for (const auto& observation : result.value())
    for (const std::string& candidate : observation.candidates) lines.push_back(candidate);
  return lines;
}

std::vector<std::string> linesOf(const Image& image, std::vector<std::string> languages = {"en-US"}) {
  TesseractRecognizer recognizer;
  return linesOf(recognizer, image, std::move(languages));
}

TextStyle codeStyle(double size) {
  return {size, Color::black(), Color::white(), platform::Font::Design::monospaced};
}

const std::vector<std::string> paragraph{"The quick brown fox jumps over", "the lazy dog while 24 hens",
                                         "watch from their wooden fence."};

TEST(TextRecognizer, ReadsTextOfManyLooks) {
  TesseractRecognizer recognizer;
  const Color orange{1, 0.6, 0.2, 1};
  const Color navy{0.05, 0.1, 0.3, 1};
  for (const TextStyle& style :
       {TextStyle{12}, TextStyle{16}, TextStyle{28}, TextStyle{56},
        TextStyle{16, Color::white(), Color::black()}, TextStyle{14, orange, navy},
        TextStyle{16, {0.5, 0.5, 0.5, 1}, {0.9, 0.9, 0.9, 1}}, TextStyle{16, Color::black(), Color::clear()}})
    EXPECT_THAT(linesOf(recognizer, pictureOf(paragraph, style)), ElementsAreArray(paragraph))
        << style.size << " points on " << style.ground.red;
}

TEST(TextRecognizer, ReadsAnyPixelsAndPartsOfImages) {
  TesseractRecognizer recognizer;
  const Image image = pictureOf(paragraph);
  EXPECT_THAT(linesOf(recognizer, asXrgb(image)), ElementsAreArray(paragraph));
  EXPECT_THAT(linesOf(recognizer, withLongRows(image)), ElementsAreArray(paragraph));
  const auto secondLine = image.cropped({{3, 40}, {image.width() - 6.0, 23}});
  ASSERT_TRUE(secondLine);
  EXPECT_THAT(linesOf(recognizer, *secondLine), ElementsAre(paragraph[1]));
}

TEST(TextRecognizer, ReadsSourceCodeWithItsUnderscoresAndQuotes) {
  const std::vector<std::string> code{"def __init__(self, max_size=10):", "    self.user_name = 'none'",
                                      "    self.title = \"a_b\""};
  EXPECT_THAT(
      linesOf(pictureOf(code, codeStyle(16))),
      ElementsAre("def __init__(self, max_size=10):", "self.user_name = 'none'", "self.title = \"a_b\""));
}

TEST(TextRecognizer, ReadsSignsWhereTheEngineAloneReadsLetters) {
  const std::vector<std::string> signs{"ls -la `pwd` | sed 's/#//'",
                                       "for (i = 0; i <= n1; ++i) {",
                                       "xs = [*a, **b] && !(c || d);",
                                       "esac;;",
                                       "/* LANDLOCK && 0x00fd */",
                                       "};",
                                       "-38.5",
                                       "@__index__"};
  const std::vector<std::string> longStrings{"def twice(number):", "\"\"\"", "return 2 * number", "'''"};
  const std::vector<std::string> manyMarks{"-a|--all) keep=1",   ";;", "'-s'|'--size')", "--",
                                           "\"test\": \"tap\",", ";;"};
  for (const auto& code : {signs, longStrings, manyMarks})
    for (const double size : {14.0, 18.0, 22.0})
      EXPECT_THAT(linesOf(pictureOf(code, codeStyle(size))), ElementsAreArray(code)) << size;
}

TEST(TextRecognizer, ReadsSpacesByTheirWidthAndDashesByTheirStrokes) {
  const std::vector<std::string> text{
      "I came, I saw -- and one when he", "was a boy. (8) Ln 12, Col 8", "Move to Trash at 9:05 PM today",
      "Run `make all` in ~/notes -- or `make`", "The 'first' [link](#page) is \"here\""};
  for (const double size : {12.0, 15.0, 20.0})
    EXPECT_THAT(linesOf(pictureOf(text, {size})), ElementsAreArray(text)) << size;
}

TEST(TextRecognizer, TellsCurlyMarksFromStraightOnes) {
  const std::vector<std::string> curly{"She called it “no good” and left", "“Well,” he said, “that’s it.”"};
  const std::vector<std::string> straight{"She called it \"no good\" and left",
                                          "\"Well,\" he said, \"that's it.\""};
  // An apostrophe alone tells too little at these sizes; the page's other marks do.
  const std::vector<std::string> curlyPage{"I’m sure that they’re right", "He said “maybe” and left",
                                           "It isn’t hers", "“Never,” we said, “it’s ours.”"};
  const std::vector<std::string> straightPage{"I'm sure that they're right", "He said \"maybe\" and left",
                                              "It isn't hers", "\"Never,\" we said, \"it's ours.\""};
  for (const auto& text : {curly, straight, curlyPage, straightPage})
    for (const double size : {16.0, 18.0, 20.0, 24.0})
      EXPECT_THAT(linesOf(pictureOf(text, {size})), ElementsAreArray(text)) << size;
}

TEST(TextRecognizer, ReadsSeveralLanguagesInOneText) {
  const std::vector<std::string> german{"Größere Änderungen über Nacht", "müssen öfter geprüft werden."};
  EXPECT_THAT(linesOf(pictureOf(german), {"en-US", "de-DE"}), ElementsAreArray(german));
  const std::vector<std::string> russian{"Добрый вечер, друзья"};
  EXPECT_THAT(linesOf(pictureOf(russian), {"ru-RU"}), ElementsAreArray(russian));
  const std::vector<std::string> mixed{german[0], paragraph[0], russian[0], paragraph[1], german[1]};
  EXPECT_THAT(linesOf(pictureOf(mixed), {"en-US", "fr-FR", "de-DE", "uk-UA", "ru-RU"}),
              ElementsAreArray(mixed));
}

TEST(TextRecognizer, LinesDrawnAroundTextAreNoText) {
  const Image words = pictureOf({"Save the changes"});
  const double right = words.width() - 1;
  const double bottom = words.height() - 1;
  const auto with = [&](std::initializer_list<platform::Rect> strokes) {
    Page page(words.width(), words.height());
    page.lay(words, 0, 0);
    for (const platform::Rect& stroke : strokes)
      page.lay(invertedPicture(
                   Page(static_cast<int>(stroke.size.width), static_cast<int>(stroke.size.height)).image()),
               static_cast<int>(stroke.origin.x), static_cast<int>(stroke.origin.y));
    return page.image();
  };
  for (const Image& picture : {with({{{0, 0}, {right, 1}},
                                     {{0, bottom}, {right, 1}},
                                     {{0, 0}, {1, bottom}},
                                     {{right, 0}, {1, bottom + 1}}}),
                               with({{{3, 3}, {right - 6, 1}},
                                     {{3, bottom - 3}, {right - 6, 1}},
                                     {{3, 3}, {1, bottom - 6}},
                                     {{right - 3, 3}, {1, bottom - 5}}}),
                               with({{{0, 0}, {1, bottom + 1}}}), with({{{right, 16}, {1, 22}}}),
                               with({{{16, 40}, {right - 32, 1}}})})
    EXPECT_THAT(linesOf(picture), ElementsAre("Save the changes"));
}

TEST(TextRecognizer, EveryRegionHasItsOwnGround) {
  const Image page =
      Page(420, 180)
          .lay(pictureOf({"Title of the window"}, {16, Color::white(), {0.2, 0.3, 0.7, 1}}), 0, 0)
          .lay(pictureOf({"Plain words on the page"}), 0, 60)
          .lay(pictureOf({"Cancel"}, {14, Color::white(), {0.7, 0.1, 0.1, 1}}), 20, 120)
          .image();
  EXPECT_THAT(linesOf(page), ElementsAre("Title of the window", "Plain words on the page", "Cancel"));
  // The chosen row covers more than the list shows beside it.
  const Image first = pictureOf({"First row"});
  const Image chosen = pictureOf({"Chosen row"}, {20, Color::white(), {0.2, 0.5, 0.9, 1}});
  const Image list = Page(chosen.width() + 4, first.height() + chosen.height() + 2)
                         .lay(first, 2, 0)
                         .lay(chosen, 2, first.height())
                         .image();
  EXPECT_THAT(linesOf(list), ElementsAre("First row", "Chosen row"));
}

TEST(TextRecognizer, MarkedWordsWithinALineAreRead) {
  for (const double size : {13.0, 16.0, 20.0}) {
    const auto context = CairoBitmapContext::create(static_cast<int>(24 * size), static_cast<int>(3 * size));
    context->fill(platform::BezierPath::rect({{0, 0}, {24 * size, 3 * size}}), Color::white());
    double x = size;
    const auto draw = [&](const std::string& words, bool marked) {
      const platform::TextAttributes attributes{{platform::Font::Design::sansSerif, size},
                                                marked ? Color::white() : Color::black()};
      const double width = context->sizeOf(words, attributes).width;
      if (marked)
        context->fill(platform::BezierPath::rect({{std::round(x), size}, {std::round(width), 1.25 * size}}),
                      {0.2, 0.5, 0.9, 1});
      context->draw(words, {x, size}, attributes);
      x += width;
    };
    draw("night for ", false);
    draw("something to", true);
    draw(" satisfy his hunger", false);
    EXPECT_THAT(linesOf(context->makeImage()), ElementsAre("night for something to satisfy his hunger"))
        << size;
  }
}

TEST(TextRecognizer, ReadsTheBulletsOfAList) {
  const std::vector<std::string> list{"•  Open the window", "•  Choose a file",
                                      "•  another one. e.g. a picture"};
  for (const double size : {16.0, 20.0})
    EXPECT_THAT(linesOf(pictureOf(list, {size})),
                ElementsAre("• Open the window", "• Choose a file", "• another one. e.g. a picture"))
        << size;
}

TEST(TextRecognizer, ColumnsAreReadOneAfterTheOtherAndRowsAcross) {
  const std::vector<std::string> left{"Text that is set in two", "narrow columns has to be",
                                      "read down the first one", "before the second one is",
                                      "begun at the top again."};
  const std::vector<std::string> right{"Whoever reads across the", "gap makes nonsense of all",
                                       "the sentences in both of", "the columns, and nobody",
                                       "wants to paste nonsense."};
  const Image columns = Page(520, 180).lay(pictureOf(left), 0, 0).lay(pictureOf(right), 260, 0).image();
  std::vector<std::string> expected = left;
  expected.insert(expected.end(), right.begin(), right.end());
  EXPECT_THAT(linesOf(columns), ElementsAreArray(expected));

  const std::vector<std::string> shortEnd{"Text that is set in two", "columns ends anywhere --",
                                          "in one line", "or another"};
  const Image uneven = Page(520, 180).lay(pictureOf(shortEnd), 0, 0).lay(pictureOf(right), 260, 0).image();
  expected = shortEnd;
  expected.insert(expected.end(), right.begin(), right.end());
  EXPECT_THAT(linesOf(uneven), ElementsAreArray(expected));

  const Image menu = Page(400, 130)
                         .lay(pictureOf({"New Window", "Open", "Save"}), 0, 0)
                         .lay(pictureOf({"Ctrl+N", "Ctrl+O", "Ctrl+S"}), 260, 0)
                         .image();
  EXPECT_THAT(linesOf(menu), ElementsAre("New Window Ctrl+N", "Open Ctrl+O", "Save Ctrl+S"));
}

TEST(TextRecognizer, InventsNothing) {
  TesseractRecognizer recognizer;
  EXPECT_THAT(linesOf(recognizer, Page(1, 1).image()), IsEmpty());
  EXPECT_THAT(linesOf(recognizer, Page(1, 200).image()), IsEmpty());
  EXPECT_THAT(linesOf(recognizer, Page(400, 300).image()), IsEmpty());
  EXPECT_THAT(linesOf(recognizer, codePicture(ZXing::BarcodeFormat::QRCode, "not for reading")), IsEmpty());
  const Image corner = Page(63, 81).lay(invertedPicture(Page(20, 75).image()), 43, 6).image();
  EXPECT_THAT(linesOf(recognizer, corner), IsEmpty());
  Page checks(200, 200);
  const Image square = Page(10, 10).image();
  for (int i = 0; i < 100; ++i) checks.lay(invertedPicture(square), i % 10 * 20, i / 10 * 20);
  EXPECT_THAT(linesOf(recognizer, checks.image()), IsEmpty());
}

TEST(TextRecognizer, ThreadsAtOnceReadWhatOneAfterTheOtherDoes) {
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

TEST(TextRecognizer, TheEngineStartsNoThreads) {
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

TEST(TextRecognizer, PreparesInTheBackgroundAndReleases) {
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

TEST(TextRecognizer, TooLittleMemoryIsAnErrorAndTheNextImageIsRead) {
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

TEST(TextRecognizer, WeighsAtRestAfterManyPicturesWhatItDidAfterOne) {
  std::vector<std::string> lines;
  for (int i = 0; i < 3; ++i) lines.insert(lines.end(), paragraph.begin(), paragraph.end());
  const Image page = pictureOf(lines);
  // A child, since the heap is arranged before there are threads.
  const pid_t child = fork();
  if (child == 0) {
    keepFreeMemoryTogether();
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

TEST(TextRecognizer, RefusesImagesThatAreTooLarge) {
  const auto pixels = std::make_shared<std::vector<std::uint32_t>>(20'000);
  const Image tall(1, 20'000, 4, platform::PixelFormat::xrgb,
                   {pixels, reinterpret_cast<const std::byte*>(pixels->data())});
  EXPECT_THAT(linesOf(tall), ElementsAre(HasSubstr("larger than")));
}

}  // namespace
}  // namespace lumiscan::desktop

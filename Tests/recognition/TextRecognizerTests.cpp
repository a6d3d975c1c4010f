#include "platform/linux/recognition/TextRecognizer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Pictures.h"
#include "ReadLines.h"
#include "platform/linux/drawing/BitmapContext.h"

namespace lumiscan::desktop {
namespace {

using platform::Color;
using platform::Image;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TextStyle codeStyle(double size) {
  return {size, Color::black(), Color::white(), platform::Font::Design::monospaced};
}

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

TEST(TextRecognizer, ReadsLettersAloneThatLookLikeTheirSmallForms) {
  TesseractRecognizer recognizer;
  for (const std::string letter : {"C", "S", "V", "W", "X"})
    for (const double size : {20.0, 28.0, 40.0})
      EXPECT_THAT(linesOf(recognizer, pictureOf({letter}, {.size = size})), ElementsAre(letter)) << size;
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
                                       "IO::File->new if $^O;",
                                       "cc -O2 ID=0OQ8B",
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
  // An l without letters beside it is what looks like it within a word.
  for (const double size : {12.0, 14.0, 16.0, 20.0, 24.0})
    EXPECT_THAT(linesOf(pictureOf({"ls -l | wc -l"}, codeStyle(size))), ElementsAre("ls -l | wc -l")) << size;
}

TEST(TextRecognizer, ReadsSpacesByTheirWidthAndDashesByTheirStrokes) {
  const std::vector<std::string> text{
      "I came, I saw -- and one when he", "was a boy. (8) Ln 12, Col 8", "Move to Trash at 9:05 PM today",
      "Run `make all` in ~/notes -- or `make`", "The 'first' [link](#page) is \"here\""};
  for (const double size : {12.0, 15.0, 20.0})
    EXPECT_THAT(linesOf(pictureOf(text, {size})), ElementsAreArray(text)) << size;
  const std::vector<std::string> dashes{"Monday – Friday", "It is — in a way — true", "well-known - or so",
                                        "- A dash"};
  for (const double size : {14.0, 18.0, 22.0})
    EXPECT_THAT(linesOf(pictureOf(dashes, {size})), ElementsAreArray(dashes)) << size;
  // Each alone: a page tells more.
  for (const std::string line :
       {"4 min ago, Col 8", "IT IS A GAME", "A committee is a life", "88,24 € for all"})
    for (const double size : {11.5, 14.5, 17.5, 20.0, 27.0})
      EXPECT_THAT(linesOf(pictureOf({line}, {size})), ElementsAre(line)) << size;
  // An A has no room of its own; a stroke of a quotation mark touches the letter beside it.
  for (const std::string line : {"A section of it and what else", "in his \"views\" of it"})
    EXPECT_THAT(linesOf(pictureOf({line}, {13})), ElementsAre(line));
}

TEST(TextRecognizer, ReadsNamesOfFilesKeysAndVersions) {
  TesseractRecognizer recognizer;
  for (const std::string line : {"F11", "notes (7).xlsx", "matrix.xlsx v8.17.1", "I'm sure"})
    for (const double size : {15.0, 16.0, 18.0, 22.0})
      EXPECT_THAT(linesOf(recognizer, pictureOf({line}, {size})), ElementsAre(line)) << size;
  // Most letters reach below the line.
  EXPECT_THAT(linesOf(recognizer, pictureOf({"Postal code", "Apply"}, {15.5})),
              ElementsAre("Postal code", "Apply"));
  // The engine knows no such word, whose small letters touch.
  EXPECT_THAT(linesOf(recognizer, pictureOf({"All of it", "eef72bfe05"}, {9.5})), SizeIs(2));
}

TEST(TextRecognizer, ReadsQuotationMarksSideBySide) {
  TesseractRecognizer recognizer;
  for (const std::string line :
       {"eval '\"$file1\"' '\"$file2\"';", "if next == '\"':", "x = \"'${1+\"$@\"}'"})
    for (const double size : {14.0, 18.0, 22.0})
      EXPECT_THAT(linesOf(recognizer, pictureOf({line}, codeStyle(size))), ElementsAre(line)) << size;
  for (const double size : {19.0, 20.0, 28.0}) {
    const std::string line = "it was \"here.'\" -- Tom";
    EXPECT_THAT(linesOf(recognizer, pictureOf({line}, {size})), ElementsAre(line)) << size;
  }
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
  // The two strokes of a mark touch.
  const std::vector<std::string> tiny{"The section \"Entitled XYZ\" means a unit",
                                      "such as \"Acknowledgements\", \"Dedications\"",
                                      "If you still don't like it, that's ok"};
  EXPECT_THAT(linesOf(pictureOf(tiny, {11})), ElementsAreArray(tiny));
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

/// The page with black rectangles on it, in pixels from the top left.
Image withRectangles(Page page, std::initializer_list<platform::Rect> parts) {
  for (const auto& [origin, extent] : parts)
    page.lay(invertedPicture(Page(static_cast<int>(extent.width), static_cast<int>(extent.height)).image()),
             static_cast<int>(origin.x), static_cast<int>(origin.y));
  return page.image();
}

TEST(TextRecognizer, LinesDrawnAroundTextAreNoText) {
  const Image words = pictureOf({"Save the changes"});
  const double right = words.width() - 1;
  const double bottom = words.height() - 1;
  const auto with = [&](std::initializer_list<platform::Rect> strokes) {
    return withRectangles(Page(words.width(), words.height()).lay(words, 0, 0), strokes);
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

TEST(TextRecognizer, IconsBesideTextAreNoText) {
  const Image folder = withRectangles({20, 20}, {{{0, 2}, {8, 3}},
                                                 {{0, 5}, {20, 2}},
                                                 {{0, 16}, {20, 2}},
                                                 {{0, 5}, {2, 12}},
                                                 {{18, 5}, {2, 12}},
                                                 {{6, 10}, {8, 2}}});
  const Image download = withRectangles({20, 20}, {{{9, 0}, {3, 12}},
                                                   {{5, 8}, {11, 2}},
                                                   {{7, 10}, {7, 2}},
                                                   {{0, 13}, {2, 6}},
                                                   {{18, 13}, {2, 6}},
                                                   {{0, 18}, {20, 2}}});
  const Image battery = withRectangles({20, 20}, {{{3, 2}, {14, 2}},
                                                  {{7, 0}, {6, 2}},
                                                  {{3, 18}, {14, 2}},
                                                  {{3, 2}, {2, 17}},
                                                  {{15, 2}, {2, 17}},
                                                  {{7, 9}, {6, 7}}});
  const auto row = [](Page& page, const Image& icon, const char* label, int y) {
    page.lay(pictureOf({label}), 20, y).lay(icon, 6, y + 18);
  };
  Page sidebar(180, 170);
  row(sidebar, folder, "Documents", 0);
  row(sidebar, download, "Downloads", 45);
  row(sidebar, battery, "Power", 90);
  EXPECT_THAT(linesOf(sidebar.image()), ElementsAre("Documents", "Downloads", "Power"));
  // Numbers are text, also in the column of the icons.
  Page steps(220, 190);
  steps.lay(pictureOf({"Documents"}), 34, 0).lay(folder, 12, 18);
  steps.lay(pictureOf({"Power"}), 34, 45).lay(battery, 12, 63);
  steps.lay(pictureOf({"1."}), 0, 90).lay(pictureOf({"Open the folder"}), 34, 90);
  steps.lay(pictureOf({"2."}), 0, 130).lay(pictureOf({"Save the file"}), 34, 130);
  EXPECT_THAT(linesOf(steps.image()),
              ElementsAre("Documents", "Power", "1. Open the folder", "2. Save the file"));
  Page button(180, 60);
  row(button, download, "Save as", 0);
  EXPECT_THAT(linesOf(button.image()), ElementsAre("Save as"));
  const Image clause =
      Page(260, 60).lay(pictureOf({"(a)"}), 0, 0).lay(pictureOf({"the first"}), 40, 0).image();
  EXPECT_THAT(linesOf(clause), ElementsAre("(a) the first"));
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

TEST(TextRecognizer, TextOnPicturesIsReadByItsColor) {
  const std::vector<std::string> lines{"They never asked for", "the old photograph"};
  for (const double size : {18.0, 26.0, 40.0}) {
    EXPECT_THAT(linesOf(pictureWithText(lines, size, Color::white(), true)), ElementsAreArray(lines)) << size;
    EXPECT_THAT(linesOf(pictureWithText(lines, size, {1, 1, 0, 1}, true)), ElementsAreArray(lines)) << size;
  }
  for (const double size : {26.0, 40.0})
    EXPECT_THAT(linesOf(pictureWithText(lines, size, Color::white(), false)), ElementsAreArray(lines))
        << size;
  EXPECT_THAT(linesOf(pictureWithText({}, 200, Color::white(), false)), IsEmpty());
}

TEST(TextRecognizer, ReadsTheNumbersOfFootnotes) {
  for (const double size : {16.0, 20.0})
    for (const std::string number : {"1", "2", "4", "5", "6", "7", "9"}) {
      const std::string words = "as it was written there";
      const RowText raised{number, 0.75 * size, 0, 0.45 * size};
      EXPECT_THAT(linesOf(rowPicture({{words, size}, raised})), ElementsAre(words + number)) << size;
    }
}

TEST(TextRecognizer, ReadsWordsOfSeveralSizesSideBySide) {
  TesseractRecognizer recognizer;
  EXPECT_THAT(linesOf(recognizer, rowPicture({{"42", 40}, {"ms", 16, 8}})), ElementsAre("42 ms"));
  EXPECT_THAT(linesOf(recognizer, rowPicture({{"$49", 36}, {"/month", 15}})), ElementsAre("$49/month"));
  EXPECT_THAT(
      linesOf(recognizer, rowPicture({{"Messages today:", 14}, {"1,024", 30, 8}, {"of 5000", 14, 8}})),
      ElementsAre("Messages today: 1,024 of 5000"));
  EXPECT_THAT(linesOf(recognizer, rowPicture({{"21°", 32}, {"cloudy", 16, 10}})), ElementsAre("21° cloudy"));
  EXPECT_THAT(linesOf(recognizer, rowPicture({{"7", 34}, {"open issues", 14, 20}})),
              ElementsAre("7 open issues"));
  // What stands beside several lines is read before them.
  const Image day = pictureOf({"24"}, {.size = 40});
  const Image plan = pictureOf({"Team", "at ten o'clock", "on Monday"}, {.size = 16});
  EXPECT_THAT(linesOf(recognizer, Page(300, 150).lay(day, 0, 0).lay(plan, 120, 14).image()),
              ElementsAre("24", "Team", "at ten o'clock", "on Monday"));
  const Image number = pictureOf({"7"}, {.size = 24});
  const Image rows = pictureOf({"holiday", "für alle gut"}, {.size = 17});
  EXPECT_THAT(linesOf(recognizer, Page(260, 110).lay(number, 0, 8).lay(rows, 70, 5).image(), {"de-DE"}),
              ElementsAre("7", "holiday", "für alle gut"));
  // Signs and capitals are no other size, nor are marks that stand high or low.
  for (const std::string line : {"if gzip -d \"$n.Z\"; then", "Undo ^Z", "[x] done with it"})
    EXPECT_THAT(linesOf(recognizer, pictureOf({line}, {.size = 20})), ElementsAre(line));
  for (const std::string line :
       {"in space, winked at me", "→ next page", "OK, so we can run", "AM or PM • 12 m"})
    EXPECT_THAT(linesOf(recognizer, pictureOf({line}, codeStyle(20))), ElementsAre(line));
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

}  // namespace
}  // namespace lumiscan::desktop

#include "platform/linux/recognition/LanguageChoice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/recognition/Scripts.h"

namespace lumiscan::desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Names = std::vector<std::string>;

TEST(LanguageChoice, LanguagesShareAnEngineOnlyWhereTheyHelpOneAnother) {
  EXPECT_THAT(engineLanguages({}, true), IsEmpty());
  EXPECT_THAT(engineLanguages({"eng"}, true), ElementsAre(Names{"eng"}));
  EXPECT_THAT(engineLanguages({"eng", "deu"}, true), ElementsAre(Names{"deu", "eng"}));
  EXPECT_THAT(engineLanguages({"deu", "eng", "fra"}, true),
              ElementsAre(Names{"deu"}, Names{"eng"}, Names{"fra"}));
  EXPECT_THAT(engineLanguages({"jpn", "eng"}, true), ElementsAre(Names{"jpn"}, Names{"eng"}));
  EXPECT_THAT(engineLanguages({"rus"}, true), ElementsAre(Names{"rus", "eng"}));
  EXPECT_THAT(engineLanguages({"rus"}, false), ElementsAre(Names{"rus"}));
}

/// Lines of so many glyphs, read by engines that are sure of some lines and not of others.
class LanguageChoiceOfLines : public testing::Test {
 protected:
  void line(std::size_t glyphs) { lines_.push_back({std::vector<Glyph>(glyphs), {}, 10, 10}); }

  std::vector<std::string> texts() {
    asked_ = 0;
    const auto read = [this](const std::vector<Question>& questions) {
      std::vector<LineDraft> answers;
      for (const Question& question : questions) {
        ++asked_;
        const bool isEven = lines_[question.line].glyphs.size() % 2 == 0;
        LineDraft draft;
        draft.symbols = {{engines_[question.engine].front(), false, {}}};
        draft.sureness = (isEven ? even_ : odd_).at(question.engine);
        answers.push_back(std::move(draft));
      }
      return answers;
    };
    std::vector<std::string> texts;
    for (const LineDraft& draft : readInBestLanguage(lines_, engines_, read))
      texts.push_back(draft.symbols.front().text);
    return texts;
  }

  std::vector<Names> engines_{{"ita"}, {"deu"}, {"eng"}};
  std::vector<double> even_{90, 99, 90};  // By engine.
  std::vector<double> odd_{90, 90, 99};
  std::vector<TextLine> lines_;
  int asked_ = 0;
};

TEST_F(LanguageChoiceOfLines, TheSurestReadsALineAndOthersAreAskedOnlyInDoubt) {
  for (const std::size_t glyphs : {4U, 20U, 22U, 24U, 6U}) line(glyphs);
  EXPECT_THAT(texts(), testing::Each("deu"));
  EXPECT_EQ(asked_, 3 * 3 + 2) << "all for the three longest lines, then one";
  line(5);
  EXPECT_EQ(texts().back(), "eng") << "the others weren't sure";
  EXPECT_EQ(asked_, 3 * 3 + 2 + 3);
}

TEST_F(LanguageChoiceOfLines, AmongEqualsTheLanguageOfThePageWinsAndEnglishLoses) {
  line(20);
  line(3);
  odd_ = {99.1, 99, 98};
  EXPECT_THAT(texts(), ElementsAre("deu", "deu"));
  even_ = odd_ = {90, 99, 99.1};
  EXPECT_THAT(texts(), ElementsAre("deu", "deu"));
}

/// Symbols of these texts; a space before one is a space read before it.
std::vector<Symbol> symbolsOf(const std::vector<std::string>& texts) {
  std::vector<Symbol> symbols;
  for (const std::string& text : texts) {
    const bool spaceBefore = text.starts_with(' ');
    symbols.push_back({text.substr(spaceBefore ? 1 : 0), spaceBefore, {}});
  }
  return symbols;
}

std::string corrected(const std::vector<std::string>& texts) {
  std::vector<Symbol> symbols = symbolsOf(texts);
  correctWideText(symbols);
  std::string text;
  for (const Symbol& symbol : symbols) text += (symbol.spaceBefore ? " " : "") + symbol.text;
  return text;
}

TEST(Scripts, SignsAreAsWideAsTheCharactersTheyBelongTo) {
  EXPECT_EQ(corrected({"中", " ,", "文", " (", "中", ")"}), "中，文（中）");
  EXPECT_EQ(corrected({"中", " a", "(", "1", ")"}), "中 a(1)") << "of Latin letters";
  EXPECT_EQ(corrected({"の", " ,", "文"}), "の ,文") << "Japanese is set with either";
  EXPECT_EQ(corrected({"は", "、", "、", "文", "。", " 中"}), "は、文。中");
  EXPECT_TRUE(isWideText(symbolsOf({"中", "a"})));
  EXPECT_FALSE(isWideText(symbolsOf({"ж", "é", "a"})));
}

}  // namespace
}  // namespace lumiscan::desktop

#include "platform/linux/recognition/LanguageData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace lumiscan::desktop {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LanguageDataTest : public ::testing::Test {
 protected:
  void install(std::initializer_list<const char*> names) {
    for (const std::string name : names) std::ofstream(folder_ / (name + ".traineddata")) << "data";
  }

  const testing::TemporaryFolder temporary_;
  const std::filesystem::path folder_ = temporary_.path();
};

TEST_F(LanguageDataTest, TagsSelectTrainedDataInTheirOrder) {
  install(
      {"eng", "deu", "fra", "ita", "spa", "por", "chi_sim", "chi_tra", "jpn", "kor", "rus", "ukr", "gsw"});
  const LanguageData data(folder_);
  EXPECT_THAT(data.select({"en-US", "fr-FR", "it-IT", "de-DE", "es-ES", "pt-BR", "zh-Hans", "zh-Hant",
                           "ja-JP", "ko-KR", "ru-RU", "uk-UA"})
                  .names,
              ElementsAre("eng", "fra", "ita", "deu", "spa", "por", "chi_sim", "chi_tra", "jpn", "kor", "rus",
                          "ukr"));
  EXPECT_THAT(data.select({"de-AT", "en-GB", "en-US", "DE", "gsw-CH"}).names,
              ElementsAre("deu", "eng", "gsw"));
  EXPECT_THAT(data.select({"zh-TW", "zh-CN"}).names, ElementsAre("chi_tra", "chi_sim"));
  EXPECT_THAT(data.select({"zh-Hans-HK"}).names, ElementsAre("chi_sim"));
}

TEST_F(LanguageDataTest, LanguagesThatAreNotThereAreNamed) {
  install({"deu"});
  const LanguageData data(folder_);
  const auto selection = data.select({"en-US", "de-DE", "", "../etc", "tlh"});
  EXPECT_THAT(selection.names, ElementsAre("deu"));
  EXPECT_THAT(selection.missing, ElementsAre("en-US", "", "../etc", "tlh"));
  EXPECT_TRUE(data.isInstalled("de"));
  EXPECT_FALSE(data.isInstalled("en"));
  EXPECT_EQ(data.missingPackage("de-DE"), std::nullopt);
  EXPECT_EQ(data.missingPackage("zh-Hans"), "tesseract-ocr-chi-sim");
  EXPECT_EQ(data.missingPackage(""), std::nullopt);
  EXPECT_THAT(LanguageData(folder_ / "nowhere").select({"de"}).names, IsEmpty());
}

TEST_F(LanguageDataTest, WithoutTagsEnglishOrElseWhateverIsThere) {
  const LanguageData data(folder_);
  EXPECT_THAT(data.select({}).names, IsEmpty());
  install({"osd", "jpn", "deu"});
  EXPECT_THAT(data.select({}).names, ElementsAre("deu"));
  install({"eng"});
  EXPECT_THAT(data.select({}).names, ElementsAre("eng"));
  EXPECT_THAT(LanguageData(folder_ / "nowhere").select({}).names, IsEmpty());
}

}  // namespace
}  // namespace lumiscan::desktop

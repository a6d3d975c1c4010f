#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "output/HistoryStore.h"
#include "settings/Settings.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {
namespace {

using ::testing::IsEmpty;

constexpr const char* someID = "0F9A3B5C-1D2E-4F60-8A7B-9C0D1E2F3A4B";

CaptureRecord record(const std::string& text, double seconds = 1.5, CaptureMode mode = CaptureMode::text) {
  return {*platform::UUID::fromString(someID), {seconds}, mode, text};
}

struct HistoryTest : ::testing::Test {
  void store(const platform::DefaultsValue& value) {
    desktop.userDefaults().setObject("captureHistory", value);
  }
  std::string stored() { return desktop.userDefaults().dataForKey("captureHistory")->bytes; }

  testing::SimulatedDesktop desktop;
  int posts = 0;
  const std::shared_ptr<void> observation =
      desktop.notificationCenter().addObserver("varnholt.lumiscan.historyChanged", [this] { ++posts; });
};

TEST_F(HistoryTest, HasAnExactStoredForm) {
  HistoryStore store;
  store.add(record("a \"q\"\n/ \u00E9 \xF0\x9D\x84\x9E \x01", 700000000.125, CaptureMode::textToSpeech));
  store.add(record("", 0, CaptureMode::barcode));
  store.add(record("before", -0.5));
  const std::string id = std::string("{\"id\":\"") + someID + "\",";
  EXPECT_EQ(stored(), "[" + id + R"("date":-0.5,"mode":"text","text":"before"},)" + id +
                          R"("date":0,"mode":"barcode","text":""},)" + id +
                          "\"date\":700000000.125,\"mode\":\"textToSpeech\","
                          "\"text\":\"a \\\"q\\\"\\n/ \u00E9 \xF0\x9D\x84\x9E \\u0001\"}]");
  EXPECT_EQ(HistoryStore().items(), store.items());
  EXPECT_EQ(posts, 3);
  store.clear();
  EXPECT_EQ(stored(), "[]");
  EXPECT_EQ(posts, 4);
  // What can't be encoded leaves what is stored, and is announced all the same.
  store.add(record("never", std::numeric_limits<double>::infinity()));
  EXPECT_EQ(stored(), "[]");
  EXPECT_EQ(posts, 5);
}

TEST_F(HistoryTest, ReadsWhatIsARecordWhateverItsOrderAndOtherMembers) {
  store(platform::Data{R"( [ {"text":"t","later":{"x":[1]},"mode":"text","date":15e-1,
                             "id":"0f9a3b5c-1d2e-4f60-8a7b-9c0d1e2f3a4b"} ] )"});
  EXPECT_THAT(HistoryStore().items(), ::testing::ElementsAre(record("t")));

  const std::string good =
      R"({"id":"0F9A3B5C-1D2E-4F60-8A7B-9C0D1E2F3A4B","date":1,"mode":"text","text":"t"})";
  std::vector<std::string> wrong{"",     "nonsense", "{}",       "[null]",
                                 "[[]]", good,       "[" + good, "[" + good + ",1]"};
  // One record that is none, after one that is.
  for (const auto& [part, replacement] : {std::pair(R"("mode":"text",)", ""),
                                          {R"("text")", R"("speech")"},
                                          {R"("mode":"text")", R"("mode":"Text")"},
                                          {R"("mode":"text")", R"("mode":1)"},
                                          {R"("date":1)", R"("date":"1")"},
                                          {R"("date":1)", R"("date":true)"},
                                          {R"("date":1)", R"("date":null)"},
                                          {R"("date":1)", R"("date":1e999)"},
                                          {"0F9A", "0F9"},
                                          {"0F9A", "0F9G"},
                                          {"5C-1D", "5C1D-"},
                                          {R"("t"})", "\"\xFF\"}"}}) {
    std::string changed = good;
    changed.replace(changed.find(part), std::strlen(part), replacement);
    wrong.emplace_back("[" + good).append(",").append(changed).append("]");
  }
  for (const std::string& document : wrong) {
    store(platform::Data{document});
    EXPECT_THAT(HistoryStore().items(), IsEmpty()) << document;
    EXPECT_EQ(stored(), document) << "stays until the next change";
  }
  for (const platform::DefaultsValue& value :
       {platform::DefaultsValue("[" + good + "]"), platform::DefaultsValue(true),
        platform::DefaultsValue(1.0), platform::DefaultsValue(std::vector<std::string>{good})}) {
    store(value);
    EXPECT_THAT(HistoryStore().items(), IsEmpty());
  }
  HistoryStore().add(record("new"));
  EXPECT_EQ(HistoryStore().items().size(), 1U);
}

TEST_F(HistoryTest, KeepsTheNewestTwentyFromTheNextAdditionOn) {
  std::string document = "[";
  for (int i = 0; i < 25; ++i)
    document += std::string(i ? "," : "") + R"({"id":")" + someID + R"(","date":1,"mode":"text","text":")" +
                std::to_string(i) + "\"}";
  store(platform::Data{document + "]"});
  HistoryStore history;
  EXPECT_EQ(history.items().size(), 25U);
  history.add(record("new"));
  ASSERT_EQ(history.items().size(), 20U);
  EXPECT_EQ(history.items().front().text, "new");
  EXPECT_EQ(history.items().back().text, "18");
  history.add(record("new"));
  EXPECT_EQ(history.items().size(), 20U) << "the same text twice is two records";
  EXPECT_EQ(history.items()[1].text, "new");
}

TEST_F(HistoryTest, IdentifiersAreRandomAndOfVersionFour) {
  const auto first = platform::UUID::random();
  EXPECT_NE(first, platform::UUID::random());
  EXPECT_THAT(first.uuidString(),
              ::testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
  EXPECT_EQ(platform::UUID::fromString(first.uuidString()), first);
}

}  // namespace
}  // namespace lumiscan

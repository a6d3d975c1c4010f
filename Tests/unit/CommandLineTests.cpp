// What the command line asks for: which mode, and the two without a user interface.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "app/CommandLine.h"
#include "selftest/SelfTest.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {
namespace {

/// The status that `run` returns, and what it prints.
std::pair<int, std::string> printed(int (*run)()) {
  std::ostringstream output;
  std::streambuf* const original = std::cout.rdbuf(output.rdbuf());
  const int status = run();
  std::cout.rdbuf(original);
  return {status, output.str()};
}

TEST(CommandLine, FlagsCountAnywhereButOnlyWhole) {
  struct Case {
    std::vector<std::string> arguments;
    LaunchMode mode;
  };
  const std::vector<Case> cases = {
      {{}, LaunchMode::interactive},
      {{"lumiscan", "--unknown", ""}, LaunchMode::interactive},
      {{"--selftest"}, LaunchMode::selfTest},
      {{"lumiscan", "--check-permission", "--selftest"}, LaunchMode::selfTest},
      {{"lumiscan", "--selftest", "--check-permission"}, LaunchMode::selfTest},
      {{"lumiscan", "a", "--check-permission", "b"}, LaunchMode::permissionProbe},
      {{"lumiscan", "--Check-Permission"}, LaunchMode::interactive},
      {{"lumiscan", "--check-permission=1"}, LaunchMode::interactive},
      {{"lumiscan", "x--selftest", "--selftes", " --selftest"}, LaunchMode::interactive},
  };
  for (const Case& each : cases)
    EXPECT_EQ(launchMode(each.arguments), each.mode) << ::testing::PrintToString(each.arguments);
}

TEST(CommandLine, ProbeAsksNobodyAndMakesNoApplication) {
  testing::SimulatedDesktop desktop;
  for (const bool granted : {true, false}) {
    desktop.displays().accessGranted = granted;
    const std::string answer = granted ? "true" : "false";
    EXPECT_EQ(printed(runPermissionProbe),
              std::pair(granted ? 0 : 1, "Screen recording granted: " + answer + "\n"));
  }
  EXPECT_EQ(desktop.displays().accessRequests, 0);
  EXPECT_FALSE(desktop.applicationMade());
}

class SelfTestTest : public ::testing::Test {
 protected:
  testing::SimulatedDesktop desktop;
  const std::string product = "https://varnholt.com/lumiscan";
};

TEST_F(SelfTestTest, ReportsWhatWasRead) {
  using Lines = std::vector<std::string>;
  struct Case {
    std::optional<Lines> lines;  ///< Nothing for engines that fail.
    Lines payloads;
    std::string output;
  };
  const std::vector<Case> cases = {
      {Lines{"LumiSCAN", "24680 varnholt"},
       {"other", product},
       "PASS  OCR recognizes the app name\n"
       "PASS  OCR recognizes digits\n"
       "PASS  Line collapsing\n"
       "PASS  QR round-trip\n"
       "\nAll self-tests passed.\n"},
      {Lines{"Lumiscan 2468O", "varnholt"},
       {"HTTPS://VARNHOLT.COM/LUMISCAN", "b"},
       "PASS  OCR recognizes the app name\n"
       "FAIL  OCR recognizes digits — got: Lumiscan 2468O\nvarnholt\n"
       "PASS  Line collapsing\n"
       "FAIL  QR round-trip — got: [\"HTTPS://VARNHOLT.COM/LUMISCAN\", \"b\"]\n"
       "\n2 self-test(s) failed.\n"},
      {std::nullopt,
       {},
       "FAIL  OCR recognizes the app name — got: \n"
       "FAIL  OCR recognizes digits — got: \n"
       "PASS  Line collapsing\n"
       "FAIL  QR round-trip — got: []\n"
       "\n3 self-test(s) failed.\n"},
  };
  for (const Case& each : cases) {
    desktop.textRecognizer().recognizes(each.lines.value_or(Lines{}));
    desktop.barcodeDetector().finds(each.payloads);
    if (!each.lines) {
      desktop.textRecognizer().result = platform::Error{"no engine"};
      desktop.barcodeDetector().result = platform::Error{"no detector"};
    }
    EXPECT_EQ(printed(SelfTest::run), std::pair(&each == &cases.front() ? 0 : 1, each.output));
  }
  EXPECT_FALSE(desktop.applicationMade());
}

TEST_F(SelfTestTest, StopsWhereAnImageCannotBeMade) {
  desktop.textRecognizer().recognizes({"Lumiscan 24680"});
  desktop.drawing().qrCode = std::nullopt;
  EXPECT_EQ(printed(SelfTest::run), std::pair(1, std::string("PASS  OCR recognizes the app name\n"
                                                             "PASS  OCR recognizes digits\n"
                                                             "PASS  Line collapsing\n"
                                                             "FAIL  QR generation returned nil\n")));
  desktop.drawing().makesContexts = false;
  EXPECT_EQ(printed(SelfTest::run), std::pair(1, std::string("FAIL  text rendering returned nil\n")));
}

TEST_F(SelfTestTest, DrawsTheTextAndTheCodeThatItReads) {
  printed(SelfTest::run);
  ASSERT_EQ(desktop.drawing().images.size(), 1U);
  EXPECT_THAT(
      desktop.drawing().images[0].operations,
      ::testing::ElementsAre("fill rgba(1, 1, 1, 1) 1000×220 at (0, 0) radius 0",
                             "text rgba(0, 0, 0, 1) sans 72 bold at (40, 103): Lumiscan 24680 varnholt"));
  const auto& text = desktop.textRecognizer().requests.at(0);
  EXPECT_EQ(text.asked.recognitionLanguages, std::vector<std::string>{"en-US"});
  EXPECT_EQ(text.image.width(), 1000);
  EXPECT_EQ(text.image.height(), 220);

  ASSERT_EQ(desktop.drawing().qrRequests.size(), 1U);
  EXPECT_EQ(desktop.drawing().qrRequests[0].message, product);
  EXPECT_EQ(desktop.drawing().qrRequests[0].level, platform::QRCorrectionLevel::high);
  EXPECT_EQ(desktop.barcodeDetector().requests.at(0).image.width(), 12 * 29);
}

}  // namespace
}  // namespace lumiscan

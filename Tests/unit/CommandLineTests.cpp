// What the command line asks for, and the self-test where it fails. The program's own tests run both modes
// without a user interface as a user does.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "app/CommandLine.h"
#include "selftest/SelfTest.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {
namespace {

TEST(CommandLine, FlagsCountAnywhereButOnlyWhole) {
  const std::vector<std::pair<std::vector<std::string>, LaunchMode>> cases = {
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
  for (const auto& [arguments, mode] : cases)
    EXPECT_EQ(launchMode(arguments), mode) << ::testing::PrintToString(arguments);
}

struct SelfTestTest : ::testing::Test {
  /// What a run prints; its status must be this.
  static std::string run(int status) {
    std::ostringstream output;
    std::streambuf* const original = std::cout.rdbuf(output.rdbuf());
    EXPECT_EQ(SelfTest::run(), status);
    std::cout.rdbuf(original);
    return output.str();
  }

  testing::SimulatedDesktop desktop;
};

TEST_F(SelfTestTest, ReportsWhatWasRead) {
  desktop.textRecognizer().recognizes({"LumiSCAN", "24680 varnholt"});
  desktop.barcodeDetector().finds({"other", "https://varnholt.com/lumiscan"});
  EXPECT_THAT(run(0), ::testing::EndsWith("\n\nAll self-tests passed.\n"));

  desktop.textRecognizer().recognizes({"Lumiscan 2468O", "varnholt"});
  desktop.barcodeDetector().finds({"HTTPS://VARNHOLT.COM/LUMISCAN", "b"});
  EXPECT_EQ(run(1),
            "PASS  OCR recognizes the app name\n"
            "FAIL  OCR recognizes digits — got: Lumiscan 2468O\nvarnholt\n"
            "PASS  Line collapsing\n"
            "FAIL  QR round-trip — got: [\"HTTPS://VARNHOLT.COM/LUMISCAN\", \"b\"]\n"
            "\n2 self-test(s) failed.\n");

  desktop.textRecognizer().result = platform::Error{"no engine"};
  desktop.barcodeDetector().result = platform::Error{"no detector"};
  EXPECT_EQ(run(1),
            "FAIL  OCR recognizes the app name — got: \n"
            "FAIL  OCR recognizes digits — got: \n"
            "PASS  Line collapsing\n"
            "FAIL  QR round-trip — got: []\n"
            "\n3 self-test(s) failed.\n");
}

TEST_F(SelfTestTest, StopsWhereAnImageCannotBeMade) {
  desktop.textRecognizer().recognizes({"Lumiscan 24680"});
  desktop.drawing().qrCode = std::nullopt;
  EXPECT_THAT(run(1), ::testing::EndsWith("\nFAIL  QR generation returned nil\n"));
  desktop.drawing().makesContexts = false;
  EXPECT_EQ(run(1), "FAIL  text rendering returned nil\n");
}

}  // namespace
}  // namespace lumiscan

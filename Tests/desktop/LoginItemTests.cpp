// The entry in the autostart folder, as the desktop and the user find it.

#include "platform/linux/LoginItem.h"

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace lumiscan::testing {
namespace {

namespace fs = std::filesystem;
using desktop::AutostartEntry;
using platform::LoginItemStatus;

struct LoginItemTest : ::testing::Test {
  AutostartEntry entryFor(const fs::path& program) const { return {file(), program}; }
  fs::path file() const { return folder.path() / "autostart" / "ours.desktop"; }
  LoginItemStatus statusOf(const std::string& entry) const {
    std::ofstream(file()) << entry;
    return entryFor("/usr/bin/lumiscan").status();
  }

  const TemporaryFolder folder;
};

TEST_F(LoginItemTest, StartsTheProgramWhateverItsPath) {
  for (const auto& [path, command] : {std::pair("/usr/bin/lumiscan", R"(Exec="/usr/bin/lumiscan")"),
                                      {"/a b/100%/lumiscan", R"(Exec="/a b/100%%/lumiscan")"},
                                      {"/\"$x`\\y", R"(Exec="/\\"\\$x\\`\\\\y")"},
                                      {"/größer;=#[/x", R"(Exec="/größer;=#[/x")"},
                                      {"/line\nfeed", R"(Exec="/line\nfeed")"}}) {
    SCOPED_TRACE(path);
    AutostartEntry entry = entryFor(path);
    EXPECT_EQ(entry.status(), LoginItemStatus::notRegistered);
    EXPECT_TRUE(entry.registerItem());
    EXPECT_EQ(entry.status(), LoginItemStatus::enabled);
    const std::string content = contentOf(file());
    EXPECT_NE(content.find(std::string(command) + "\n"), std::string::npos) << content;
    EXPECT_TRUE(entry.unregisterItem());
    EXPECT_TRUE(fs::is_empty(file().parent_path()));
  }
}

TEST_F(LoginItemTest, TheStatusIsWhatTheEntrySays) {
  fs::create_directories(file().parent_path());
  const std::string entry = "[Desktop Entry]\nType=Application\nExec=";
  EXPECT_EQ(statusOf(entry + "/usr/bin/lumiscan\n"), LoginItemStatus::enabled);
  EXPECT_EQ(statusOf("# Exec=\n[Desktop Entry]\nExec = \"/usr/bin/lumiscan\" --quiet\r\nHidden=false\n"),
            LoginItemStatus::enabled);
  for (const std::string& other :
       {std::string(), entry, entry + "/usr/bin/lumiscan2", entry + "/opt/lumiscan/lumiscan",
        entry + "/usr/bin/lumiscan\nHidden=true\n",
        entry + "/usr/bin/lumiscan\nX-GNOME-Autostart-enabled=false",
        std::string("[Desktop Action x]\nExec=/usr/bin/lumiscan\n")})
    EXPECT_EQ(statusOf(other), LoginItemStatus::notRegistered) << other;
}

TEST_F(LoginItemTest, WhatStartsAnotherProgramIsReplacedButNotRemoved) {
  AutostartEntry other = entryFor("/opt/lumiscan");
  AutostartEntry ours = entryFor("/usr/bin/lumiscan");
  EXPECT_TRUE(other.registerItem());
  EXPECT_TRUE(ours.unregisterItem());
  EXPECT_EQ(other.status(), LoginItemStatus::enabled);
  EXPECT_TRUE(ours.registerItem());
  EXPECT_EQ(ours.status(), LoginItemStatus::enabled);
}

}  // namespace
}  // namespace lumiscan::testing

// The sounds on a private sound server without a device, whose output is recorded.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "desktop/Process.h"
#include "platform/linux/Sound.h"
#include "support/TemporaryFolder.h"

namespace lumiscan::testing {
namespace {

namespace fs = std::filesystem;

class SoundTest : public ::testing::Test {
 public:
  SoundTest() {
    for (const char* variable : {"HOME", "XDG_RUNTIME_DIR"}) setenv(variable, folder_.path().c_str(), 1);
    setenv("PULSE_SERVER", ("unix:" + socket_.string()).c_str(), 1);
  }

 protected:
  void startServer() {
    const fs::path setup = folder_.path() / "setup.pa";
    std::ofstream(setup) << "load-module module-null-sink sink_name=silent rate=44100 channels=1\n"
                            "load-module module-native-protocol-unix auth-anonymous=1 socket="
                         << socket_.string() << "\nset-default-sink silent\n";
    fs::remove(socket_);
    server_ = Process::start(
        {"pulseaudio", "-n", "-F", setup, "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no"});
    ASSERT_TRUE(waitUntil([this] { return fs::exists(socket_); }));
    recorder_ = Process::start({"parec", "-d", "silent.monitor", "--rate=44100", "--channels=1",
                                "--format=s16le", "--latency-msec=10"});
    ASSERT_TRUE(waitUntil([this] { return !recorder_->standardOutput().empty(); }));
  }

  /// How many samples of what was recorded are no silence.
  std::size_t loudSamples() const {
    const std::string bytes = recorder_->standardOutput();
    std::vector<std::int16_t> samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
    return static_cast<std::size_t>(
        std::ranges::count_if(samples, [](int sample) { return std::abs(sample) > 500; }));
  }
  bool waitForSound() {
    const std::size_t before = loudSamples();
    return waitUntil([&] { return loudSamples() > before + 2000; });
  }

  const TemporaryFolder folder_;
  const fs::path socket_ = folder_.path() / "socket";
  std::unique_ptr<Process> server_;
  std::unique_ptr<Process> recorder_;
};

TEST_F(SoundTest, PlaysWhereThereIsADeviceAndIsSilentElsewhere) {
  desktop::CanberraSounds sounds;
  sounds.play("Tink");
  startServer();
  sounds.play("No such sound");
  for (const char* name : {"Tink", "Basso", "Tink"}) {
    sounds.play(name);
    EXPECT_TRUE(waitForSound()) << name;
  }
  sounds.beep();
  EXPECT_TRUE(waitForSound());
  // A server that was started again, whether or not that was heard of meanwhile.
  for (const bool isMissed : {true, false}) {
    recorder_ = nullptr;
    server_ = nullptr;
    if (isMissed) sounds.play("Basso");
    startServer();
    EXPECT_EQ(loudSamples(), 0U);
    sounds.play("Basso");
    EXPECT_TRUE(waitForSound());
  }
}

TEST_F(SoundTest, NeverWaitsForAServerThatHangs) {
  using std::chrono::steady_clock;
  startServer();
  {
    desktop::CanberraSounds sounds;
    sounds.play("Tink");
    EXPECT_TRUE(waitForSound());
    server_->signal(SIGSTOP);
    const auto start = steady_clock::now();
    for (int i = 0; i < 3; ++i) sounds.play("Basso");
    sounds.beep();
    EXPECT_LT(steady_clock::now() - start, std::chrono::milliseconds(100));
    // Another server, in the place of the one that hangs.
    const auto hanging = std::move(server_);
    recorder_->signal(SIGKILL);
    startServer();
    EXPECT_TRUE(waitUntil([&] {
      sounds.play("Tink");
      return loudSamples() > 2000;
    }));
    hanging->signal(SIGKILL);
    server_->signal(SIGSTOP);
    sounds.play("Tink");
  }
  server_->signal(SIGCONT);
}

}  // namespace
}  // namespace lumiscan::testing

// How long a capture waits until it is stored, on a quiet disk and on one that other work keeps busy. Prints
// a Markdown table.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/LinuxDesktop.h"
#include "platform/linux/UserDefaults.h"

namespace {

using lumiscan::platform::Data;
using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

constexpr int captures = 200;

/// Writes a file of 64 MiB over and over, and waits each time until the disk has it.
class BusyDisk {
 public:
  explicit BusyDisk(const fs::path& file)
      : thread_([file](const std::stop_token& end) { write(file, end); }) {}

 private:
  static void write(const fs::path& file, const std::stop_token& end) {
    const std::vector<char> block(1U << 20, 'x');
    while (!end.stop_requested()) {
      const int descriptor = open(file.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0600);
      for (int i = 0; i < 64; ++i)
        if (::write(descriptor, block.data(), block.size()) < 0) std::perror(file.c_str());
      fsync(descriptor);
      close(descriptor);
    }
  }

  std::jthread thread_;
};

/// Stores as captures of 800 characters in the additive mode do, one every 300 milliseconds, and prints how
/// long each waited.
void measure(const char* disk, const fs::path& folder) {
  lumiscan::desktop::FileUserDefaults defaults(folder / "preferences.json");
  const std::string history(20000, 'h');
  std::string buffer(800, 'b');
  std::vector<double> times;
  for (int i = 0; i < captures; ++i) {
    const auto start = Clock::now();
    defaults.setObject("lastSelection", Data{std::to_string(i)});
    defaults.setObject("additiveClipboardBuffer", buffer + std::to_string(i));
    defaults.setObject("captureHistory", Data{history + std::to_string(i)});
    times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
  }
  std::sort(times.begin(), times.end());
  std::printf("| %s | %.1f | %.1f | %.1f |\n", disk, times[captures / 2], times[captures * 95 / 100],
              times.back());
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: storing_benchmark FOLDER, a new one on the disk to measure\n");
    return 2;
  }
  const lumiscan::desktop::LinuxDesktop desktop;  // For the log.
  const fs::path folder = argv[1];
  if (!fs::create_directory(folder)) {
    std::fprintf(stderr, "storing_benchmark: %s is there already\n", folder.c_str());
    return EXIT_FAILURE;
  }
  std::printf("| disk | median ms | 95th percentile | worst |\n|---|---:|---:|---:|\n");
  measure("quiet", folder);
  {
    const BusyDisk busy(folder / "large");
    measure("busy", folder);
  }
  fs::remove_all(folder);
  return EXIT_SUCCESS;
}

#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include "desktop/PrivateDesktop.h"

// Servers of a test's own, which end with their objects.

namespace lumiscan::testing {

/// A message bus.
class PrivateBus : public Process {
 public:
  /// At an address of its own, or at one where another bus has been.
  explicit PrivateBus(const std::string& address = "unix:tmpdir=/tmp")
      : Process({"dbus-daemon", "--session", "--nofork", "--print-address=1", "--address=" + address}) {
    if (!waitUntil([this] { return standardOutput().ends_with('\n'); })) throw std::runtime_error("no bus");
    // Without the bus's identity, which no other has.
    address_ = standardOutput().substr(0, standardOutput().find(','));
  }
  const std::string& address() const { return address_; }

 private:
  std::string address_;
};

/// A speech server with the configuration and the socket in `folder`; it runs when this returns.
inline std::unique_ptr<Process> startSpeechServer(const std::filesystem::path& folder,
                                                  const std::string& pidFile = "pid") {
  const std::filesystem::path socket = folder / "socket";
  std::filesystem::remove(socket);
  auto server = Process::start({"speech-dispatcher", "-s", "-t", "0", "-c", "unix_socket", "-S", socket, "-C",
                                folder, "-L", folder, "-P", folder / pidFile});
  if (!waitUntil([&] { return std::filesystem::exists(socket); }))
    throw std::runtime_error("no speech server");
  return server;
}

/// A speech server without a voice, on a private desktop: this process's environment points at it.
inline std::unique_ptr<Process> startSilentSpeechServer(const PrivateDesktop& desktop) {
  const auto folder = desktop.home() / "speech";
  std::filesystem::create_directories(folder / "modules");
  std::ofstream(folder / "speechd.conf") << "AudioOutputMethod \"alsa\"\nAudioALSADevice \"null\"\n"
                                            "AddModule \"dummy\" \"sd_dummy\" \"\"\nDefaultModule dummy\n";
  setenv("SPEECHD_ADDRESS", ("unix_socket:" + (folder / "socket").string()).c_str(), 1);
  return startSpeechServer(folder);
}

}  // namespace lumiscan::testing

#include "desktop/SilentSpeechServer.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace lumiscan::testing {

SilentSpeechServer::SilentSpeechServer(const PrivateDesktop& desktop) {
  const auto folder = desktop.home() / "speech";
  std::filesystem::create_directories(folder / "modules");
  std::ofstream(folder / "speechd.conf") << "AudioOutputMethod \"alsa\"\nAudioALSADevice \"null\"\n"
                                            "AddModule \"dummy\" \"sd_dummy\" \"\"\nDefaultModule dummy\n";
  setenv("SPEECHD_ADDRESS", ("unix_socket:" + (folder / "socket").string()).c_str(), 1);
  server_ = std::make_unique<Process>(std::vector<std::string>{"speech-dispatcher", "-s", "-t", "0", "-c",
                                                               "unix_socket", "-S", folder / "socket", "-C",
                                                               folder, "-L", folder, "-P", folder / "pid"});
  if (!waitUntil([&] { return std::filesystem::exists(folder / "socket"); }))
    throw std::runtime_error("no speech server");
}

}  // namespace lumiscan::testing

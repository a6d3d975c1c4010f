#include "desktop/SilentSpeechServer.h"

#include <cstdlib>
#include <fstream>

#include "desktop/Servers.h"

namespace lumiscan::testing {

SilentSpeechServer::SilentSpeechServer(const PrivateDesktop& desktop) {
  const auto folder = desktop.home() / "speech";
  std::filesystem::create_directories(folder / "modules");
  std::ofstream(folder / "speechd.conf") << "AudioOutputMethod \"alsa\"\nAudioALSADevice \"null\"\n"
                                            "AddModule \"dummy\" \"sd_dummy\" \"\"\nDefaultModule dummy\n";
  setenv("SPEECHD_ADDRESS", ("unix_socket:" + (folder / "socket").string()).c_str(), 1);
  server_ = startSpeechServer(folder);
}

}  // namespace lumiscan::testing

#include "platform/linux/SpeechLanguages.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <memory>
#include <set>
#include <string_view>

namespace lumiscan::desktop {

namespace {

std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

/// An identifier's language as speech engines name it: they speak Mandarin rather than Chinese.
std::string spokenLanguage(const std::string& identifier) {
  const std::string language = identifier.substr(0, identifier.find_first_of("-_"));
  return language == "zh" ? "cmn" : language;
}

/// The address of the server's socket in the file system; empty for a server on the network.
std::string socketPath() {
  char* error = nullptr;
  const std::unique_ptr<SPDConnectionAddress, decltype(&SPDConnectionAddress__free)> address(
      spd_get_default_address(&error), &SPDConnectionAddress__free);
  std::free(error);
  if (!address || address->method != SPD_METHOD_UNIX_SOCKET || !address->unix_socket_name) return {};
  return address->unix_socket_name;
}

/// What the server at the socket answers to the commands, of which the last has it end the connection; cut
/// short when that breaks.
std::string answer(const std::string& path, std::string_view commands) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof address.sun_path) return {};
  std::memcpy(address.sun_path, path.c_str(), path.size());
  const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  std::string text;
  if (connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
      send(server, commands.data(), commands.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(commands.size())) {
    char part[65536];
    for (ssize_t count = 0; (count = recv(server, part, sizeof part, 0)) > 0;)
      text.append(part, static_cast<std::size_t>(count));
  }
  close(server);
  return text;
}

}  // namespace

std::vector<std::string> offeredSpeechLanguages(SPDConnection* connection) {
  std::set<std::string> languages;
  const std::string path = socketPath();
  if (path.empty()) {
    SPDVoice** voices = spd_list_synthesis_voices(connection);
    for (SPDVoice** voice = voices; voice && *voice; ++voice)
      if ((*voice)->language) languages.emplace((*voice)->language);
    if (voices) free_spd_voices(voices);
    return {languages.begin(), languages.end()};
  }
  const std::string text = answer(path,
                                  "SET SELF CLIENT_NAME user:lumiscan:voices\r\n"
                                  "LIST SYNTHESIS_VOICES\r\n"
                                  "QUIT\r\n");
  // Lines such as 249-NAME<tab>LANGUAGE<tab>VARIANT.
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    const std::string_view line(text.data() + begin, end - begin);
    const std::size_t first = line.find('\t');
    const std::size_t second = first == line.npos ? first : line.find('\t', first + 1);
    if (line.starts_with("249-") && second != line.npos)
      languages.emplace(line.substr(first + 1, second - first - 1));
    begin = end + 1;
  }
  return {languages.begin(), languages.end()};
}

std::optional<std::string> bestSpeechLanguage(const std::vector<std::string>& offered,
                                              const std::string& identifier) {
  const std::string wanted = lowerCase(identifier);
  const std::string language = spokenLanguage(wanted);
  // The very same; then the bare language; then any of its regions.
  for (const std::string& candidate : {wanted, language})
    for (const std::string& each : offered)
      if (lowerCase(each) == candidate) return each;
  for (const std::string& each : offered)
    if (spokenLanguage(lowerCase(each)) == language) return each;
  return std::nullopt;
}

}  // namespace lumiscan::desktop

// Speech through a real speech server with a real engine. Each utterance is noted, with its voice, by the
// command that synthesises it, which then takes as long as a long text would.

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fstream>

#include "desktop/Servers.h"
#include "platform/linux/SpeechLanguages.h"
#include "platform/linux/SpeechSynthesizer.h"

namespace lumiscan::testing {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

class SpeechTest : public ::testing::Test {
 public:
  SpeechTest() {
    setenv("SPEECHD_ADDRESS", ("unix_socket:" + (folder_ / "socket").string()).c_str(), 1);
    for (const char* variable : {"HOME", "XDG_RUNTIME_DIR"}) setenv(variable, folder_.c_str(), 1);
    fs::create_directories(folder_ / "modules");
    configure("noted");
    std::ofstream(folder_ / "modules" / "espeak-ng.conf") << "";
    std::ofstream noted(folder_ / "modules" / "noted.conf");
    noted << R"(GenericExecuteSynth \
"text=\'$DATA\'; espeak-ng -v $VOICE -w ~/speech.wav -- $text && echo $$ $VOICE: $text >>~/spoken && exec sleep 30"
)";
    for (const auto& [language, voice] :
         {std::pair("en", "en-us"), {"de", "de"}, {"pt-br", "pt-br"}, {"cmn", "cmn"}})
      noted << "GenericLanguage \"" << language << "\" \"" << language << "\" \"utf-8\"\n"
            << "AddVoice \"" << language << "\" \"MALE1\" \"" << voice << "\"\n";
  }
  ~SpeechTest() override {
    if (server_) server_->signal(SIGCONT);
    speech_ = nullptr;
    server_ = nullptr;
    for (const auto& [process, utterance] : spoken()) kill(process, SIGKILL);
  }

 protected:
  /// Which of the two modules speaks: the one that notes what it does, or the engine's own.
  void configure(const std::string& module) {
    std::ofstream(folder_ / "speechd.conf") << R"(LogLevel 0
AudioOutputMethod "alsa"
AudioALSADevice "null"
AddModule "noted" "sd_generic" "noted.conf"
AddModule "espeak-ng" "sd_espeak-ng" "espeak-ng.conf"
DefaultLanguage "en"
DefaultModule )" << module << "\n";
  }
  void startServer(const std::string& pidFile = "pid") { server_ = startSpeechServer(folder_, pidFile); }

  /// What was synthesised: the process that plays it, and "VOICE: TEXT".
  std::vector<std::pair<pid_t, std::string>> spoken() const {
    std::vector<std::pair<pid_t, std::string>> all;
    std::ifstream file(folder_ / "spoken");
    pid_t process = 0;
    std::string utterance;
    while (file >> process && std::getline(file >> std::ws, utterance)) all.emplace_back(process, utterance);
    return all;
  }
  bool waitForSpoken(const std::string& utterance) {
    return waitUntil([&] { return !spoken().empty() && spoken().back().second == utterance; });
  }
  static bool plays(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string number, name, state;
    return file >> number >> name >> state && state != "Z";
  }
  /// How long a call takes; nothing here may wait for the server.
  template <typename Call>
  static void expectAtOnce(Call call) {
    const auto start = steady_clock::now();
    call();
    EXPECT_LT(steady_clock::now() - start, milliseconds(100));
  }
  void speak(const std::string& text, const std::optional<std::string>& language) {
    expectAtOnce([&] { speech_->speak({text, language}); });
  }

  const TemporaryFolder home_;
  const fs::path folder_ = home_.path();
  std::unique_ptr<Process> server_;
  std::unique_ptr<desktop::SpeechDispatcherSynthesizer> speech_ =
      std::make_unique<desktop::SpeechDispatcherSynthesizer>(milliseconds(500));
};

TEST_F(SpeechTest, SpeaksWithTheVoiceOfTheLanguageUntilStopped) {
  startServer();
  EXPECT_FALSE(speech_->isSpeaking());
  const std::tuple<std::optional<std::string>, const char*, const char*> cases[] = {
      {"de-DE", "Guten Tag", "de: Guten Tag"}, {"en-US", "Good morning", "en-us: Good morning"},
      {"pt-BR", "Bom dia", "pt-br: Bom dia"},  {"zh-Hans", "早上好", "cmn: 早上好"},
      {"xx-YY", "no such", "en-us: no such"},  {std::nullopt, "by default", "en-us: by default"},
  };
  for (const auto& [language, text, expected] : cases) {
    speak(text, language);
    EXPECT_TRUE(speech_->isSpeaking());
    ASSERT_TRUE(waitForSpoken(expected)) << expected;
    EXPECT_TRUE(speech_->isSpeaking());
    const auto stopped = steady_clock::now();
    expectAtOnce([this] { speech_->stopSpeaking(); });
    EXPECT_FALSE(speech_->isSpeaking());
    EXPECT_TRUE(waitUntil([this] { return !plays(spoken().back().first); }));
    EXPECT_LT(steady_clock::now() - stopped, milliseconds(100));
  }
}

TEST_F(SpeechTest, HearsWhenTheEngineHasSpoken) {
  configure("espeak-ng");
  startServer();
  for (const char* language : {"de-DE", "xx-YY"}) {
    speak("Guten Tag", language);
    EXPECT_TRUE(speech_->isSpeaking());
    EXPECT_TRUE(waitUntil([this] { return !speech_->isSpeaking(); }));
  }
}

TEST_F(SpeechTest, QueuesUtterancesAndSpeaksOnlyTheLastOfManyReplacements) {
  startServer();
  for (int i = 0; i < 20; ++i) {
    speech_->stopSpeaking();
    speak("number " + std::to_string(i), "en-US");
  }
  speak("queued", "en-US");
  ASSERT_TRUE(waitForSpoken("en-us: number 19")) << ::testing::PrintToString(spoken());
  kill(spoken().back().first, SIGTERM);
  ASSERT_TRUE(waitForSpoken("en-us: queued"));
  EXPECT_TRUE(speech_->isSpeaking());
  kill(spoken().back().first, SIGTERM);
  EXPECT_TRUE(waitUntil([this] { return !speech_->isSpeaking(); }));
}

TEST_F(SpeechTest, IsSilentWithoutAServerAndSpeaksOnceThereIsOne) {
  speak("nobody hears", "en-US");
  EXPECT_TRUE(waitUntil([this] { return !speech_->isSpeaking(); }));
  startServer();
  speak("first", "en-US");
  ASSERT_TRUE(waitForSpoken("en-us: first"));
  server_->signal(SIGKILL);
  EXPECT_TRUE(waitUntil([this] { return !speech_->isSpeaking(); }));
  expectAtOnce([this] { speech_->stopSpeaking(); });
  startServer("second pid");
  speak("second", "de-DE");
  EXPECT_TRUE(waitForSpoken("de: second"));
}

TEST_F(SpeechTest, NeverWaitsForAServerThatHangs) {
  startServer();
  speak("first", "en-US");
  ASSERT_TRUE(waitForSpoken("en-us: first"));
  server_->signal(SIGSTOP);
  expectAtOnce([this] { speech_->stopSpeaking(); });
  speak("unheard", "en-US");
  const auto hanging = std::move(server_);
  startServer("second pid");
  // Until the connection counts as hanging, utterances wait for it.
  EXPECT_TRUE(waitUntil([this] {
    expectAtOnce([this] { speech_->stopSpeaking(); });
    speak("second", "de-DE");
    return !spoken().empty() && spoken().back().second == "de: second";
  }));
  hanging->signal(SIGCONT);
  speech_ = nullptr;
}

/// A server that tells of the end of each message before it tells the message's number. It prints how many
/// it has had.
constexpr const char* hastyServer = R"(
import socketserver, sys
replies = {"speak": "230 OK RECEIVING DATA", "HISTORY GET CLIENT_ID": "245-1\r\n245 OK CLIENT ID SENT",
           "GET LANGUAGE": "251-en\r\n251 OK GET RETURNED"}
class Client(socketserver.StreamRequestHandler):
    number = 0
    def handle(self):
        while (command := self.rfile.readline().decode().strip()) not in ("", "QUIT"):
            self.reply(replies.get(command, "200 OK"))
            if command == "speak":
                while self.rfile.readline().strip() != b".": pass
                Client.number += 1
                print(Client.number, flush=True)
                self.reply("702-{0}\r\n702-1\r\n702 END\r\n225-{0}\r\n225 OK MESSAGE QUEUED".format(Client.number))
    def reply(self, lines): self.wfile.write((lines + "\r\n").encode())
server = socketserver.ThreadingUnixStreamServer(sys.argv[1], Client)
print(0, flush=True)
server.serve_forever()
)";

TEST_F(SpeechTest, HearsOfAnEndThatComesBeforeTheMessagesNumber) {
  server_ = Process::start({"python3", "-c", hastyServer, folder_ / "socket"});
  ASSERT_TRUE(waitUntil([this] { return server_->standardOutput() == "0\n"; }));
  for (const char* numbers : {"0\n1\n", "0\n1\n2\n"}) {
    speak("soon spoken", std::nullopt);
    EXPECT_TRUE(waitUntil([this] { return !speech_->isSpeaking(); }));
    EXPECT_EQ(server_->standardOutput(), numbers);
  }
}

TEST(SpeechLanguages, AreChosenByTheIdentifierThenTheLanguage) {
  const std::vector<std::string> offered = {"cmn", "de-AT", "de", "en-US", "en-GB", "pt-BR"};
  const auto best = [&offered](const char* identifier) {
    return desktop::bestSpeechLanguage(offered, identifier).value_or("none");
  };
  EXPECT_EQ(best("en-gb"), "en-GB");
  EXPECT_EQ(best("en-AU"), "en-US");
  EXPECT_EQ(best("de-DE"), "de");
  EXPECT_EQ(best("pt-PT"), "pt-BR");
  EXPECT_EQ(best("zh-Hant"), "cmn");
  EXPECT_EQ(best("fr-FR"), "none");
}

}  // namespace
}  // namespace lumiscan::testing

// Bad input at the command line gets one clear line on standard error and a failing exit code,
// never a crash; and the file of `endpin-cli tone` holds what the tuning fork plays, or is not
// there.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <fstream>
#include <set>
#include <sndfile.hh>
#include <thread>

#include "calibration/ToneSynthesizer.h"
#include "tests/e2e/Listening.h"

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

class CommandLine : public ::testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder_.file(name); }

  // Without the sound server and the settings of the machine it runs on.
  Finished runCommand(const Command& command) const {
    return runToEnd(command, 20s,
                    {{"HOME", home_.path()},
                     {"XDG_RUNTIME_DIR", home_.path()},
                     {"XDG_DATA_HOME", home_.path()},
                     {"XDG_CONFIG_HOME", home_.path()},
                     {"PULSE_SERVER", "unix:" + path("no-such-socket")},
                     {"TERM", "xterm"},
                     {"NO_COLOR", "1"},
                     {"LC_ALL", "C"}});
  }
  Finished run(const Command& arguments) const { return runCommand(endpin(arguments)); }

  // Exit code 2: the command is wrong. 1: it is right, but cannot be done.
  void expectRefused(const Command& arguments, int exitCode) const {
    const auto before = names();
    const Finished finished = run(arguments);
    SCOPED_TRACE(::testing::PrintToString(arguments) + ": " + finished.errors);
    EXPECT_EQ(finished.exitCode, exitCode);
    EXPECT_EQ(std::ranges::count(finished.errors, '\n'), 1);
    EXPECT_GT(finished.errors.size(), 10U);
    EXPECT_NO_THROW(parseTicks(finished.output));
    EXPECT_TRUE(finished.output.empty() || finished.output.back() == '\n');
    EXPECT_EQ(names(), before);
  }

  std::set<fs::path> names() const {
    const fs::directory_iterator all(folder_.path());
    return {begin(all), end(all)};
  }

  TempDirectory folder_;
  TempDirectory home_;
};

TEST_F(CommandLine, BadInputGetsOneLineAndAFailingExitCode) {
  writeWav(path("good.wav"), bowedTone(48000.0, 2.0, 220.0));
  fs::copy(path("good.wav"), path("half.wav"));
  fs::resize_file(path("half.wav"), fs::file_size(path("half.wav")) / 2);
  fs::create_directory(path("folder.wav"));
  std::ofstream(path("text.wav")) << "This is no sound.\nIt is a letter.\n";
  ASSERT_EQ(mkfifo(path("fifo.wav").c_str(), 0600), 0);
  const std::string good = "--input=" + path("good.wav"), output = "--output=" + path("new.wav");
  const std::pair<Command, int> rows[] = {
      {{"sing"}, 2},
      {{"listen", "--bogus"}, 2},
      {{"listen", "--input"}, 2},
      {{"listen", "--json", "--input=" + path("nowhere.wav")}, 2},
      {{"listen", "--json", "--input=" + path("text.wav")}, 2},
      {{"listen", "--json", "--input=" + path("half.wav")}, 1},
      {{"listen", "--json", "--input-device=no-such-device"}, 1},
      {{"listen", "--json"}, 1},
      {{"listen", good, "--a4=440.5"}, 2},
      {{"listen", good, "--a4="}, 2},
      {{"listen", good, "--a4=0"}, 2},
      {{"listen", good, "--a4=99999999999999999999"}, 2},
      {{"listen", "--a4=442", "--store=" + path("kept.db")}, 2},
      {{"frequencies", "--a4=440.5"}, 2},
      {{"tone", "--string=A3"}, 1},
      {{"tone", "--string=A3", output}, 2},
      {{"tone", "--string=E2", "--seconds=1", output}, 2},
      {{"tone", "--string=A\n3", "--seconds=1", output}, 2},
      {{"tone", "--string=A3", "--seconds=1", output, "--waveform=pulse"}, 2},
      {{"tone", "--string=A3", "--seconds=1,5", output}, 2},
      {{"tone", "--string=A3", "--seconds=nan", output}, 2},
      {{"tone", "--string=A3", "--seconds=0.00001", output}, 2},
      {{"tone", "--string=A3", "--seconds=3600.1", output}, 2},
      {{"tone", "--string=A3", "--seconds=1", output, "--a4=0"}, 2},
      {{"tone", "--string=A3", "--seconds=1", "--output=" + path("nowhere/tone.wav")}, 1},
      {{"tone", "--string=A3", "--seconds=1", "--output=" + path("folder.wav")}, 1},
      {{"tone", "--string=A3", "--seconds=1", "--output=" + path("fifo.wav")}, 1},
  };
  for (const auto& [arguments, exitCode] : rows) expectRefused(arguments, exitCode);
  EXPECT_NE(run({"sing"}).errors.find("\"sing\""), std::string::npos);
}

// Ten ticks a second of the file, a pitch when the last sample of a block has been heard, and the
// level of the last tenth.
TEST_F(CommandLine, GoodInputIsToldByTheClockOfTheFileAndSilentOnStandardError) {
  writeWav(path("good.wav"), joined(bowedTone(48000.0, 1.0, 220.0, 0.1),
                                    bowedTone(48000.0, 1.0, 146.8323839594813, 0.05)));
  for (const char* a4 : {"392", "440", "466"}) {
    const Finished finished = run({"listen", "--json", "--input", path("good.wav"), "--a4", a4});
    EXPECT_EQ(finished.exitCode, 0) << a4;
    EXPECT_EQ(finished.errors, "") << a4;
    const Ticks ticks = parseTicks(finished.output);
    ASSERT_EQ(ticks.size(), 20U) << a4;
    for (std::size_t n = 1; n <= ticks.size(); ++n) {
      const Tick& tick = ticks[n - 1];
      EXPECT_NEAR(tick.time, 0.1 * static_cast<double>(n), 1e-9);
      EXPECT_EQ(tick.frequency > 0.0F, tick.time > 4096.0 / 7019.5) << tick.time;
      if (n != 1 && n != 10 && n != 11) {
        EXPECT_NEAR(tick.power, n < 10 ? 0.1 : 0.05, n < 10 ? 0.003 : 0.0015) << tick.time;
      }
    }
  }
}

// What people read: at once or at the speed of the sound, on a terminal or in a file.
TEST_F(CommandLine, PeopleAreToldOfEachChange) {
  const std::string note = path("note.wav");
  writeWav(note, joined(bowedTone(48000.0, 1.2, 220.0), silence(48000.0, 0.3)));
  const std::string all =
      "   0.1 s     0.0Hz      yellow  tuned -- -- -- --\n"
      "   0.6 s   220.0Hz  A3  green   tuned A3 -- -- --\n"
      "   1.4 s         -      yellow  tuned A3 -- -- --\n";
  const auto onTerminal = [&](const char* size) {
    const std::string live = endpin({"listen"})[0] + " listen --realtime --input " + note;
    return Command{"script", "-qec", size + live, "/dev/null"};
  };
  const struct {
    Command command;
    double seconds;  // at the least
    std::string shown;
  } rows[] = {
      {endpin({"frequencies", "--a4=443"}), 0,
       "D3     147.8335 Hz   147.6857 Hz       147.9813 Hz"},
      {endpin({"frequencies", "--a4=443"}), 0, "none: this string can never light green"},
      {endpin({"listen", "--input", note}), 0, all},
      {endpin({"listen", "--realtime", "--input", note}), 1.5, all},
      {endpin({"listen", "--or-recording", note}), 1.5, all},
      {onTerminal(""), 1.5, "\r\x1b[?7l 220.0Hz  A3  * green "},
      {onTerminal("stty cols 12; "), 1.5, "\r\x1b[?7l* A3 220.0Hz"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(::testing::PrintToString(row.command));
    const auto begin = std::chrono::steady_clock::now();
    const Finished finished = runCommand(row.command);
    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_NE(finished.output.find(row.shown), std::string::npos) << finished.output;
    EXPECT_GE(std::chrono::steady_clock::now() - begin, row.seconds * 1s);
    const bool recording = row.command[2] == "--or-recording";
    EXPECT_EQ(finished.errors.ends_with("; listening to a recording\n"), recording);
  }
}

// A sound file starts from nothing unless a file of settings is named; that one is a first launch,
// which is silent, and then a later one.
TEST_F(CommandLine, SettingsAreKeptInTheFileThatIsNamedAndNowhereElse) {
  writeWav(path("note.wav"), bowedTone(48000.0, 2.0, 220.0));
  const Command listen = {"listen", "--json", "--input", path("note.wav")};
  const auto beeps = [this](Command command, const Command& more) {
    command.insert(command.end(), more.begin(), more.end());
    const Finished finished = run(command);
    EXPECT_EQ(finished.exitCode, 0) << finished.errors;
    const Ticks ticks = parseTicks(finished.output);
    return ticks.empty() ? -1 : ticks.back().beeps;
  };
  for (int launch = 0; launch < 2; ++launch) EXPECT_EQ(beeps(listen, {}), 0) << "always the first";
  EXPECT_EQ(beeps(listen, {"--a4", "440"}), 1);
  EXPECT_TRUE(fs::is_empty(home_.path()));
  EXPECT_EQ(beeps(listen, {"--store", path("kept.db")}), 0);
  EXPECT_EQ(beeps(listen, {"--store", path("kept.db")}), 1);
  EXPECT_TRUE(fs::is_empty(home_.path()));
}

TEST_F(CommandLine, ToneIsWhatTheTuningForkPlaysFromItsBeginning) {
  const struct {
    int string;  // 0 is the highest
    const char* waveform;
    std::uint64_t tone;
    const char* a4;
    const char* seconds;
    std::size_t frames;
  } rows[] = {{0, "sine", 0, "440", "1", 44100},
              {1, "triangle", 1, "440", "0.33337", 14702},
              {2, "sawtooth", 2, "432", "0.7", 30870},
              {3, "square", 3, "440", "1e-1", 4410},
              {0, "", 3, "440", "0.00003", 1}};
  for (const auto& row : rows) {
    const CelloString& string = kCelloStrings[row.string];
    SCOPED_TRACE(std::string(string.note) + ' ' + row.waveform);
    Command tone = {"tone", "--output", path("tone.wav"), "--string", string.note,
                    "--a4", row.a4,     "--seconds",      row.seconds};
    if (*row.waveform) tone.insert(tone.end(), {"--waveform", row.waveform});
    const Finished finished = run(tone);
    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_EQ(finished.output + finished.errors, "");

    SndfileHandle file(path("tone.wav"));
    EXPECT_EQ(file.samplerate(), 44100);
    EXPECT_EQ(file.channels(), 2);
    EXPECT_EQ(file.format() & ~SF_FORMAT_ENDMASK, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    EXPECT_EQ(fs::file_size(path("tone.wav")), 44 + 4 * row.frames);
    ASSERT_EQ(file.frames(), row.frames);
    std::vector<std::uint32_t> written(row.frames), expected(row.frames);
    file.read(reinterpret_cast<std::int16_t*>(written.data()), 2 * file.frames());
    ToneSynthesizer synthesizer;
    synthesizer.toneFrequency = static_cast<float>(string.frequency * std::stod(row.a4) / 440);
    synthesizer.curTone = row.tone;
    AudioOutputBuffer buffer{expected.data()};
    ToneSynthesizer::renderTone(&synthesizer, static_cast<std::uint32_t>(row.frames), {&buffer, 1});
    EXPECT_TRUE(written == expected);
  }
}

TEST_F(CommandLine, ALongToneKeepsItsFrequency) {
  run({"tone", "--string=G2", "--a4=432", "--waveform=sine", "--seconds=30",
       "--output=" + path("tone.wav")});
  const double frequency = fundamentalOf(readSoundFile(path("tone.wav")), 96.0);
  EXPECT_NEAR(frequency, 432.0 * std::pow(2.0, -26.0 / 12.0), 0.0005);
}

TEST_F(CommandLine, AnInterruptedToneLeavesTheOldFile) {
  std::ofstream(path("tone.wav")) << "old";
  const auto before = names();
  for (const int number : {SIGINT, SIGTERM}) {
    ChildProcess child(
        endpin({"tone", "--string=A3", "--seconds=3600", "--output=" + path("tone.wav")}));
    while (child.running() && names() == before) std::this_thread::sleep_for(1ms);
    child.signal(number);
    EXPECT_EQ(child.waitFor(5s), 1) << child.errors();
    EXPECT_EQ(names(), before);
    std::string content;
    std::ifstream(path("tone.wav")) >> content;
    EXPECT_EQ(content, "old");
  }
}

}  // namespace
}  // namespace endpin::testing

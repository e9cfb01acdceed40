// What the page calls, by way of web/core.mjs. Texts come in through the exchange buffer, one after
// the other, with their lengths in bytes. Before `start` nothing but the two buffers may be asked
// for. Thread: main; none is called while another one runs.
#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "adapters/web/Exchange.h"
#include "web/Page.h"

#define ENDPIN_EXPORT(name) extern "C" __attribute__((export_name(name)))

namespace endpin {
namespace {

std::optional<Page> only;

// Ends the program when there is none: the page learns of it by a trap.
Page& page() {
  return only.value();
}

std::vector<float>& sampleBuffer() {
  static std::vector<float> samples;
  return samples;
}

template <std::size_t Count>
std::array<std::string, Count> takeTexts(const std::array<std::int32_t, Count>& lengths) {
  std::array<std::string, Count> texts;
  std::size_t offset = 0;
  for (std::size_t i = 0; i < Count; ++i) {
    texts[i] = exchangedText(lengths[i], offset).value_or("");
    offset += texts[i].size();
  }
  return texts;
}

// A line for each microphone: its id, a tab, its name.
std::vector<Microphone> microphonesIn(std::string_view lines) {
  std::vector<Microphone> microphones;
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    lines.remove_prefix(std::min(lines.size(), line.size() + 1));
    const auto tab = line.find('\t');
    if (tab == line.npos) continue;
    microphones.push_back({std::string(line.substr(0, tab)), std::string(line.substr(tab + 1))});
  }
  return microphones;
}

}  // namespace

// Where the page writes texts of `size` bytes together.
ENDPIN_EXPORT("exchangeBuffer") char* exportedExchangeBuffer(std::size_t size) {
  return exchangeBuffer(size);
}

// Where the page writes `count` samples for `feed`.
ENDPIN_EXPORT("sampleBuffer") float* exportedSampleBuffer(std::size_t count) {
  sampleBuffer().resize(count);
  return sampleBuffer().data();
}

// Starts the application, whose main screen appears. `width` and `height` of the screen in points,
// `now` in seconds of any origin, the same for `advance`. Once.
ENDPIN_EXPORT("start") void start(double width, double height, bool touch, double now) {
  only.emplace(width, height, touch, now).launch();
  only->settle();
}

// The time is `now`: what is due happens. Returns when something is due next.
ENDPIN_EXPORT("advance") double advance(double now) {
  const double next = page().runLoop().advance(now);
  page().settle();
  return next;
}

// Hears the samples in the sample buffer, taken at `rate` hertz. False for a rate that is none.
ENDPIN_EXPORT("feed") bool feed(double rate) {
  const bool taken = page().microphone().feed(sampleBuffer(), rate);
  page().settle();
  return taken;
}

// The microphone delivers no more.
ENDPIN_EXPORT("lose") void lose() {
  page().microphone().lose();
  page().settle();
}

// What the page knows of the microphones. `trouble` counts in the order of HearingTrouble; texts:
// the name of the one in use, and a line for each that is connected.
ENDPIN_EXPORT("tellMicrophones")
void tellMicrophones(std::uint32_t trouble, std::int32_t nameLength, std::int32_t linesLength) {
  const auto [name, lines] = takeTexts<2>({nameLength, linesLength});
  page().microphone().tell({.trouble = static_cast<HearingTrouble>(trouble),
                            .nameInUse = name,
                            .connected = microphonesIn(lines)});
}

// Carries out an action, see ScreenBridge. Texts: its name, the name of the control, its new value.
ENDPIN_EXPORT("perform")
bool perform(std::int32_t actionLength, std::int32_t senderLength, std::int32_t valueLength) {
  const auto [action, sender, value] = takeTexts<3>({actionLength, senderLength, valueLength});
  const bool done = page().screen().perform(action, sender, value);
  page().settle();
  return done;
}

}  // namespace endpin

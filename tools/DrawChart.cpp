// Fills the chart template for one calibration: endpin-draw-chart TEMPLATE A4 OUTPUT.svg
//
// The template says @A4@ where the calibration stands, and @A3@, @D3@, @G2@, @C2@ where the
// frequencies of the strings stand.

#include <fmt/core.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include "calibration/StringFrequencies.h"

namespace {

std::int64_t parseA4(std::string_view text) {
  std::int64_t hertz = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), hertz);
  if (error != std::errc{} || end != text.data() + text.size() || hertz <= 0) {
    throw std::runtime_error(fmt::format("A4 must be a whole number of hertz, not '{}'", text));
  }
  return hertz;
}

std::string readAll(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A template that has lost one of its marks would draw a wrong chart, so that is an error.
void fillIn(std::string& drawing, std::string_view mark, const std::string& text) {
  std::size_t at = drawing.find(mark);
  if (at == std::string::npos) throw std::runtime_error(fmt::format("{} is missing", mark));
  for (; at != std::string::npos; at = drawing.find(mark, at + text.size())) {
    drawing.replace(at, mark.size(), text);
  }
}

void drawChart(const std::string& source, std::int64_t a4, const std::string& output) {
  std::string drawing = readAll(source);
  fillIn(drawing, "@A4@", fmt::format("{}", a4));
  const std::array<double, 4> frequencies = endpin::stringFrequencies(a4);
  for (std::size_t i = 0; i < frequencies.size(); ++i) {
    fillIn(drawing, fmt::format("@{}@", endpin::kStringNotes[i]),
           fmt::format("{:.1f}", frequencies[i]));
  }
  std::ofstream file(output, std::ios::binary);
  file << drawing;
  if (!file.flush()) throw std::runtime_error("cannot write " + output);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: endpin-draw-chart TEMPLATE A4 OUTPUT.svg\n", stderr);
    return 2;
  }
  try {
    drawChart(argv[1], parseA4(argv[2]), argv[3]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "endpin-draw-chart: %s\n", error.what());
    return 1;
  }
  return 0;
}

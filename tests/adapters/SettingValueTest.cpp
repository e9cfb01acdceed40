#include "ports/TypedStore.h"

#include <gtest/gtest.h>

#include <cmath>

namespace endpin {
namespace {

constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();

TEST(SettingValue, EachTypeReadsAsEachOther) {
  const struct {
    SettingValue stored;
    std::int64_t integer;
    bool yes;
    double number;
    const char* text;
  } rows[] = {
      {true, 1, true, 1.0, "1"},
      {false, 0, false, 0.0, "0"},
      {kLeast, kLeast, true, -0x1p63, "-9223372036854775808"},
      {-4.9, -4, true, -4.9, "-4.9"},
      {0x1p63, kMost, true, 0x1p63, "9.223372036854776e+18"},
      {-1e300, kLeast, true, -1e300, "-1e+300"},
      {std::string(" +7.75 Hz"), 7, true, 7.75, " +7.75 Hz"},
      {std::string("YES"), 0, true, 0.0, "YES"},
      {std::string("true"), 0, true, 0.0, "true"},
      {std::string("NO"), 0, false, 0.0, "NO"},
      {std::string(""), 0, false, 0.0, ""},
      {std::string("99999999999999999999"), kMost, true, 1e20, "99999999999999999999"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(asInteger(row.stored), row.integer);
    EXPECT_EQ(asBool(row.stored), row.yes);
    EXPECT_EQ(asDouble(row.stored), row.number);
    EXPECT_EQ(asString(row.stored), row.text);
  }
  EXPECT_EQ(asInteger(std::nan("")), 0);
}

}  // namespace
}  // namespace endpin

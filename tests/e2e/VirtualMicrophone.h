// The ground of the live tests: a private sound server with a virtual microphone.
#pragma once

#include <gtest/gtest.h>

#include "tests/e2e/Listening.h"
#include "tests/support/PrivateSoundServer.h"

namespace endpin::testing {

// A tick that read this string in tune just now.
inline auto greenAt(int string) {
  return [string](const Tick& tick) {
    return tick.green() && inBand(string, static_cast<double>(tick.frequency));
  };
}

class VirtualMicrophone : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!server_.start()) GTEST_SKIP() << server_.reason();
  }

  PrivateSoundServer server_;
};

}  // namespace endpin::testing

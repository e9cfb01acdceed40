// Counts every allocation of the test program, for code that must not make any.
#pragma once

#include <cstddef>

namespace endpin::fakes {

// Calls of operator new since the program began, on all threads.
std::size_t allocationCount();

}  // namespace endpin::fakes

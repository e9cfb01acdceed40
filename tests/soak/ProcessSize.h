// What this process holds of the machine. Thread: any.
#pragma once

#include <malloc.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace endpin::soak {

struct ProcessSize {
  double descriptors = 0;
  double threads = 0;
  double residentKib = 0;
  double heapKib = 0;  // in use; 0 under the sanitizers, which have an allocator of their own

  static ProcessSize now() {
    const auto entries = [](const char* folder) {
      return static_cast<double>(std::distance(std::filesystem::directory_iterator(folder), {}));
    };
    double pages = 0;
    double resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return {.descriptors = entries("/proc/self/fd"),
            .threads = entries("/proc/self/task"),
            .residentKib = resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024,
            .heapKib = static_cast<double>(mallinfo2().uordblks) / 1024};
  }
};

}  // namespace endpin::soak

// A program that uses the settings store as it is told, for tests that end it, starve it or look at
// what it left behind:
//
//   settings-writer write PATH     writes one value of each type and ends without cleaning up
//   settings-writer read PATH      prints what each getter makes of each value
//   settings-writer count PATH     counts on in the store, and prints what it has synchronized
//   settings-writer full PATH      meets a full disk, then gets room again
//   settings-writer strip PATH     as a user who may not write there: counts once, prints, ends
//
// The log goes to standard error.
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <map>
#include <string>

#include "adapters/log/StreamLog.h"
#include "adapters/sqlite/SqliteStore.h"

namespace {

using endpin::SqliteStore;

void print(const std::string& text) {
  const std::string line = text + '\n';
  if (write(STDOUT_FILENO, line.data(), line.size()) < 0) _exit(3);
}

void writeTypes(SqliteStore& store) {
  store.setBool("yes", true);
  store.setInteger("hertz", 415);
  store.setDouble("half", 0.1);
  store.setString("text", "433.5 H\xc3\xa4nde");
  store.synchronize();
  _exit(0);
}

void readTypes(SqliteStore& store) {
  for (const char* key : {"yes", "hertz", "half", "text", "missing"}) {
    print(fmt::format("{} {} {} {} {}", key, store.integerForKey(key), store.boolForKey(key),
                      store.doubleForKey(key), store.stringForKey(key).value_or("(none)")));
  }
}

// Both keys change together, every fifth time after everything has been forgotten.
void count(SqliteStore& store) {
  for (std::int64_t n = store.integerForKey("counter") + 1;; ++n) {
    if (n % 5 == 0) store.removeAll();
    store.setInteger("counter", n);
    store.setInteger("mirror", n);
    store.synchronize();
    print(std::to_string(n));
  }
}

void setFileSizeLimit(rlim_t bytes) {
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = bytes == 0 ? limit.rlim_max : bytes;
  setrlimit(RLIMIT_FSIZE, &limit);
}

void fillDisk(SqliteStore& store) {
  store.setInteger("before", 1);
  store.synchronize();
  signal(SIGXFSZ, SIG_IGN);
  setFileSizeLimit(32 * 1024);
  for (int i = 0; i < 20; ++i) {
    store.setString("large" + std::to_string(i), std::string(8192, 'x'));
    store.synchronize();
  }
  print(fmt::format("in memory {}", store.stringForKey("large19")->size()));
  setFileSizeLimit(0);
  store.setInteger("after", 1);
  store.synchronize();
  _exit(0);
}

void countOnce(SqliteStore& store) {
  store.setInteger("counter", store.integerForKey("counter") + 1);
  store.synchronize();
  print(std::to_string(store.integerForKey("counter")));
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) return 2;
  const std::string mode = arguments[1];
  // Root may write anywhere; 65534 is nobody.
  if (mode == "strip" && getuid() == 0 && setresuid(65534, 65534, 65534) != 0) return 3;
  endpin::StreamLog log(stderr);
  SqliteStore store(arguments[2], log);
  const std::map<std::string, void (*)(SqliteStore&)> modes = {{"write", writeTypes},
                                                               {"read", readTypes},
                                                               {"count", count},
                                                               {"full", fillDisk},
                                                               {"strip", countOnce}};
  modes.at(mode)(store);
  return 0;
}

// Looks up the address of a host without waiting for it. A name server that does not answer can
// hold a look-up for half a minute, and nothing can call it off: it runs on a thread of its own
// that nobody waits for, and that ends with the process at the latest. The toolkit's own look-up
// would hold up the end of the application that long.
//
// Thread: the maker's.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace endpin {

class NameLookup {
 public:
  // Gets the first address as text, empty when there is none. Runs on the look-up's thread.
  using Found = std::function<void(const std::string& address)>;

  NameLookup() = default;
  // `found` is called no more afterwards; a call that runs is waited for.
  ~NameLookup();
  NameLookup(const NameLookup&) = delete;
  NameLookup& operator=(const NameLookup&) = delete;

  // Calls `found` once, unless the object goes before. One look-up at a time: the next may start
  // when the one before has called.
  void start(const std::string& host, Found found);

 private:
  struct Asker;
  std::shared_ptr<Asker> asker_;
};

}  // namespace endpin

#include "adapters/rating/NameLookup.h"

#include <netdb.h>
#include <sys/socket.h>

#include <array>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace endpin {
namespace {

std::string firstAddress(const std::string& host) {
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_STREAM;
  wanted.ai_flags = AI_ADDRCONFIG;
  addrinfo* addresses = nullptr;
  if (getaddrinfo(host.c_str(), nullptr, &wanted, &addresses) != 0) return {};
  std::array<char, NI_MAXHOST> text{};
  const int failed = getnameinfo(addresses->ai_addr, addresses->ai_addrlen, text.data(),
                                 static_cast<socklen_t>(text.size()), nullptr, 0, NI_NUMERICHOST);
  freeaddrinfo(addresses);
  return failed ? std::string() : std::string(text.data());
}

}  // namespace

// What the object and the thread of its look-up share.
struct NameLookup::Asker {
  void answer(const std::string& address) {
    const std::lock_guard lock(mutex);
    if (const auto call = std::exchange(found, nullptr)) call(address);
  }

  std::mutex mutex;
  Found found;  // empty when nobody asks any more
};

NameLookup::~NameLookup() {
  if (!asker_) return;
  const std::lock_guard lock(asker_->mutex);
  asker_->found = nullptr;
}

void NameLookup::start(const std::string& host, Found found) {
  asker_ = std::make_shared<Asker>();
  asker_->found = std::move(found);
  try {
    std::thread([asker = asker_, host] { asker->answer(firstAddress(host)); }).detach();
  } catch (const std::system_error&) {  // no thread is left
    asker_->answer({});
  }
}

}  // namespace endpin

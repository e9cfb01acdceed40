// The settings in the browser's storage, each under a key of its own. What was written in this run
// is kept in memory too: where the browser refuses to store or forgets at once, the application
// goes on with it, and the page tells the user that nothing will be kept. Thread: main.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "ports/Log.h"
#include "ports/TypedStore.h"

namespace endpin {

class WebStore : public TypedStore {
 public:
  // `log` outlives the store; it receives one line when the browser begins to refuse.
  explicit WebStore(Log& log) : log_(log) {}

  void removeAll() override;
  void synchronize() override {}  // the browser stores each value at once

 private:
  [[nodiscard]] std::optional<SettingValue> find(std::string_view key) const override;
  void set(std::string_view key, SettingValue value) override;

  Log& log_;
  std::map<std::string, SettingValue, std::less<>> written_;  // in this run
  bool cleared_ = false;  // what earlier runs left counts no more
  bool refused_ = false;
};

}  // namespace endpin

// The address of the application's page in the store. Thread: any.
#pragma once

#include <string>
#include <string_view>

namespace endpin {

// A version or number as text to a number: its longest beginning that is one, else 0. "7.1.2" is
// 7.1.
[[nodiscard]] float floatValue(std::string_view text);
[[nodiscard]] long long integerValue(std::string_view text);

// Platforms before 7, from 7 and from 8 on each want another page.
[[nodiscard]] std::string storePageUrl(const std::string& systemVersion, const std::string& appId);

}  // namespace endpin

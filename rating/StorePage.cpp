#include "rating/StorePage.h"

#include "ports/TypedStore.h"
#include "rating/StoreConfiguration.h"

namespace endpin {
namespace {

constexpr std::string_view kPlaceholder = "APP_ID";

struct Template {
  float fromVersion;
  const char* host;
  const char* pathAndQuery;
};

// The last row that the version reaches counts.
constexpr Template kTemplates[] = {
    {0.0F, kStoreReviewHost,
     "/WebObjects/MZStore.woa/wa/viewContentsUserReviews?type=Purple+Software&id=APP_ID"},
    {7.0F, kStoreHost, "/app/idAPP_ID"},
    {8.0F, kStoreHost,
     "/WebObjects/MZStore.woa/wa/viewContentsUserReviews?id=APP_ID&onlyLatestVersion=true"
     "&pageNumber=0&sortOrdering=1&type=Purple+Software"},
};

}  // namespace

float floatValue(std::string_view text) {
  return leadingNumber<float>(text);
}

long long integerValue(std::string_view text) {
  return leadingNumber<long long>(text);
}

std::string storePageUrl(const std::string& systemVersion, const std::string& appId) {
  const Template* wanted = &kTemplates[0];
  for (const Template& row : kTemplates) {
    if (floatValue(systemVersion) >= row.fromVersion) wanted = &row;
  }
  std::string path = wanted->pathAndQuery;
  path.replace(path.find(kPlaceholder), kPlaceholder.size(), appId);
  return std::string("itms-apps://") + wanted->host + path;
}

}  // namespace endpin

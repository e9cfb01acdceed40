// Where the application is sold: facts of the build, set when it is configured.
#pragma once

namespace endpin {

inline constexpr const char* kStoreId = ENDPIN_STORE_ID;  // a decimal number
inline constexpr const char* kStoreReviewHost = ENDPIN_STORE_REVIEW_HOST;
inline constexpr const char* kStoreHost = ENDPIN_STORE_HOST;
inline constexpr const char* kProbeUrl = ENDPIN_PROBE_URL;

}  // namespace endpin

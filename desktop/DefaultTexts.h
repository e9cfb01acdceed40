// All texts of the default table at once, for titles and spoken names that only the layouts know.
#pragma once

#include <QVariantMap>

#include "ports/Bundle.h"

namespace endpin {

// Text by key in the user's language, with the fallbacks of the bundle. The English table, which
// has every key, says which keys there are; without it the map is empty.
[[nodiscard]] QVariantMap defaultTexts(const Bundle& bundle);

}  // namespace endpin

// Fills the captions and the about texts from the text tables, anew at each call. Thread: main.
#pragma once

#include "app/AppOutlets.h"
#include "ports/Bundle.h"

namespace endpin {

void localizeSettings(const Bundle& bundle, AppOutlets& outlets);
void displayAboutText(const Bundle& bundle, AppOutlets& outlets);

}  // namespace endpin

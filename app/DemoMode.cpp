// What the build chooses, and nothing else: a program that brings a file of its own in place of
// this one is a demonstration, whatever the library was built as.
#include "app/ViewController.h"

namespace endpin {

const bool ViewController::kDemoModeEnabled = ENDPIN_DEMO_MODE != 0;

}  // namespace endpin

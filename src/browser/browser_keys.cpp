// The browser's keys are header-only constants; this unit anchors the library.
#include "browser/browser_keys.h"

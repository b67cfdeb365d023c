// The module is the library and nothing else; an executable needs a source of its own.
#include "qelm.h"

static_assert(sizeof(void*) == 4, "tools/page/src/library.js reads records laid out so");
static_assert(sizeof(QelmCurves) == 32, "tools/page/src/library.js reads records laid out so");

// The header as C++, included twice, with nothing before it.
#include "qelm.h"

static_assert(QELM_STATUS_OK == 0 && QELM_STATUS_BAD_COUNT_OR_HANDLE == 1 &&
              QELM_STATUS_NO_VERTEX_ORDER == 2 && QELM_STATUS_REPEATED_VERTEX == 23 &&
              QELM_STATUS_UNUSED_VERTEX == 24 && QELM_STATUS_NULL_ARRAY == 25 &&
              QELM_INFO_NO_HANDLE == 7);

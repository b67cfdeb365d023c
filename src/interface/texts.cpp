// The library's version and the meaning of its codes, in words.
#include "qelm.h"

#define QELM_TEXT_OF(x) #x
#define QELM_TEXT(x) QELM_TEXT_OF(x)

extern "C" const char* qelmversion(void) {
  return QELM_TEXT(QELM_VERSION_MAJOR) "." QELM_TEXT(QELM_VERSION_MINOR) "." QELM_TEXT(
      QELM_VERSION_PATCH);
}

extern "C" const char* qelmstatustext(int status) {
  switch (status) {
    case -1:
      return "the integer cannot be encoded, or a pointer is null";
    case QELM_STATUS_OK:
      return "success";
    case QELM_STATUS_BAD_COUNT_OR_HANDLE:
      return "a count or tolerance is out of range, or the handle is null";
    case QELM_STATUS_NO_VERTEX_ORDER:
      return "the handle holds no vertex order";
    case QELM_STATUS_REPEATED_VERTEX:
      return "a triangle names the same vertex twice";
    case QELM_STATUS_UNUSED_VERTEX:
      return "there is no triangle, or a vertex lies in none";
    case QELM_STATUS_NULL_ARRAY:
      return "an array is null";
    case QELM_CHECK_INDEX_OUT_OF_RANGE:
      return "a triangle names a vertex that does not exist";
    case QELM_CHECK_NOT_FINITE:
      return "a coordinate is infinite or not a number";
    case QELM_CHECK_NEAR_ZERO_AREA:
      return "a triangle has no area, or too little for its size and place";
    case QELM_CHECK_SIZE_OUT_OF_RANGE:
      return "a triangle is too small or too large for the arithmetic";
    case QELM_CHECK_UNTAGGED_PART:
      return "a connected part of the mesh has no vertex with a prescribed value";
    case QELM_STATUS_ENDLESS_FLIPS:
      return "the flips of robust construction did not come to an end";
    case QELM_STATUS_TOO_LARGE:
      return "the system would take more memory than it may, or than can be indexed";
    case QELM_STATUS_NOT_FACTORISED:
      return "the factorisation failed";
    case QELM_STATUS_VALUE_NOT_FINITE:
      return "the value of a tagged vertex is infinite or not a number";
    case QELM_STATUS_LOAD_NOT_FINITE:
      return "the load of a free vertex is infinite or not a number";
    case QELM_STATUS_FIELD_NOT_FINITE:
      return "the solution is infinite or not a number";
    default:
      return "unknown status code";
  }
}

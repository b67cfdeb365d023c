#include "page/view_page.h"

#include "text/index.h"

#ifdef QELM_VIEW_PAGE

// The file as it is: a page is some hundred kilobytes, for which compilers are slow.
#ifdef _WIN32
#define QELM_READ_ONLY ".section .rdata,\"dr\"\n"
#else
#define QELM_READ_ONLY ".section .rodata\n"
#endif

// clang-format off
__asm__(
    QELM_READ_ONLY
    ".globl qelmViewPageBegin\n"
    "qelmViewPageBegin:\n"
    ".incbin \"" QELM_VIEW_PAGE "\"\n"
    ".globl qelmViewPageEnd\n"
    "qelmViewPageEnd:\n"
    ".byte 0\n"
    ".text\n");
// clang-format on

extern "C" const char qelmViewPageBegin[];
extern "C" const char qelmViewPageEnd[];

namespace qelm::tool {
std::string_view viewPage() {
  return {qelmViewPageBegin, asIndex(qelmViewPageEnd - qelmViewPageBegin)};
}
}  // namespace qelm::tool

#else

namespace qelm::tool {
std::string_view viewPage() { return {}; }
}  // namespace qelm::tool

#endif

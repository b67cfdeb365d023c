// What comes in is a large file's name; what comes out are its bytes, as pages of the system's own
// cache. For Linux alone.
#ifndef QELM_TOOLS_MAPPED_PAGES_H
#define QELM_TOOLS_MAPPED_PAGES_H

#include <span>

namespace qelm::tool {

/// Nothing when the file is small or not a plain one, when it cannot be mapped, and while another
/// one is mapped.
std::span<const char> mapPages(const char* path);

/// Whether the file has become shorter than it was. Reading the bytes that it lost would end the
/// program with a signal (SIGBUS); they are zeros instead.
bool arePagesMissing();

void unmapPages(std::span<const char> pages);

}  // namespace qelm::tool

#endif

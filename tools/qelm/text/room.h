// Room in arrays that grow.
#ifndef QELM_TOOLS_ROOM_H
#define QELM_TOOLS_ROOM_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace qelm::tool {

/// Makes room for `more` entries, at least doubling the array if it must grow: asked for again and
/// again, it copies no more than push_back() does.
template <class Entry>
void makeRoom(std::vector<Entry>& entries, std::size_t more) {
  if (entries.capacity() - entries.size() < more)
    entries.reserve(std::max(entries.size() + more, 2 * entries.size()));
}

}  // namespace qelm::tool

#endif

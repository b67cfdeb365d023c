// The mesh and field of a page, as tools/page/src/decode.js reads them.
#ifndef QELM_TOOLS_PAGE_DATA_H
#define QELM_TOOLS_PAGE_DATA_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "colours/ramp.h"
#include "mesh/mesh.h"

namespace qelm::tool {

struct PageContent {
  const Mesh& mesh;
  std::span<const double> field;
  std::span<const double> others;  ///< further fields, one after another, n values each
  std::span<const double> load;    ///< n values, or none
  std::vector<int> fixedBy;  ///< n; the condition's number in the page's list, from 1; 0: free
  const Ramp& ramp;
  bool isExact;  ///< coordinates as doubles, else as 24-bit fractions of the box
};

/// One block of bytes, little-endian; decode.js has the layout. Corners are differences to the
/// corner before, so that each takes one or two bytes in a mesh whose numbering has good locality.
std::string pageData(const PageContent& content);

}  // namespace qelm::tool

#endif

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
  std::vector<int> fixedBy;  ///< n; 0: free, else the condition's place in the page's list, from 1
  const Ramp& ramp;
  bool isExact;  ///< positions in full, not as 24-bit fractions of the box
};

/// One block of bytes, little-endian; decode.js has the layout. Compact: a corner of a mesh in a
/// natural order takes one or two bytes. Further fields come last.
std::string pageData(const PageContent& content);

/// In the alphabet of RFC 4648, padded.
std::string base64(std::string_view bytes);

}  // namespace qelm::tool

#endif

// The page that `qelm view` fills in, bundled from tools/page when the tool is built.
#ifndef QELM_TOOLS_VIEW_PAGE_H
#define QELM_TOOLS_VIEW_PAGE_H

#include <string_view>

namespace qelm::tool {

/// HTML with the marks @QELM_TITLE@, @QELM_FACTS@ and @QELM_MESH@, in this order. Empty when
/// the tool was built without the page's packages.
std::string_view viewPage();

}  // namespace qelm::tool

#endif

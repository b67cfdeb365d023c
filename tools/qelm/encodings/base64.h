// Bytes as letters (RFC 4648, section 4).
#ifndef QELM_TOOLS_BASE64_H
#define QELM_TOOLS_BASE64_H

#include <optional>
#include <string>
#include <string_view>

namespace qelm::tool {

/// The bytes of a text; blanks and line ends are passed over. Several texts with their own
/// padding may follow each other, as in VTK's files. Nothing when another character is in it, or
/// a group is cut short.
std::optional<std::string> fromBase64(std::string_view text);

std::string toBase64(std::string_view bytes);

}  // namespace qelm::tool

#endif

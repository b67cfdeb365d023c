// Base64: three bytes as four letters (RFC 4648, section 4).
#ifndef QELM_TOOLS_BASE64_H
#define QELM_TOOLS_BASE64_H

#include <optional>
#include <string>
#include <string_view>

namespace qelm::tool {

/// The bytes of a text; blanks and line ends are passed over. Several texts, each with its padding,
/// may follow each other, as in VTK's files. Nothing if there is any other character, or a group of
/// fewer than four letters.
std::optional<std::string> fromBase64(std::string_view text);

/// Padded.
std::string toBase64(std::string_view bytes);

}  // namespace qelm::tool

#endif

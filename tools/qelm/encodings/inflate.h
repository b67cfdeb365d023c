// Decompression: what comes in are bytes compressed by Deflate, what comes out are those they stand
// for. By libdeflate or by zlib, whichever the build has.
#ifndef QELM_TOOLS_INFLATE_H
#define QELM_TOOLS_INFLATE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qelm::tool {

enum class Wrapping {
  kZlib,  ///< with its header and check sum (RFC 1950), as in VTK's files
  kNone   ///< the compressed data alone (RFC 1951), as in ZIP archives
};

/// Decompresses exactly `size` bytes and adds them to `bytes`. Returns false if the data are
/// damaged or stand for another number of bytes. Takes no more memory than so many compressed bytes
/// can stand for.
bool inflate(std::string_view compressed, Wrapping wrapping, std::size_t size, std::string& bytes);

/// The check sum of ZIP archives.
std::uint32_t crc32Of(std::string_view bytes);

}  // namespace qelm::tool

#endif

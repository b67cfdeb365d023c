// Opens a text file by its narrow name.
#ifndef QELM_EXPORT_OUTPUT_FILE_H
#define QELM_EXPORT_OUTPUT_FILE_H

#include <fstream>
#include <string>

namespace qelm {

/// Opens `name` for writing in text mode, emptying it if it exists. The stream is
/// in a failed state if that is not possible.
///
/// On Linux the bytes are the name. On Windows the name is widened as the narrow
/// file functions of the platform do it: from the ANSI code page, or the OEM code
/// page while the process has chosen that with SetFileApisToOEM().
std::ofstream openForWriting(const std::string& name);

}  // namespace qelm

#endif  // QELM_EXPORT_OUTPUT_FILE_H

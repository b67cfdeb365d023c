#include "export/output_file.h"

namespace qelm {

std::ofstream openForWriting(const std::string& name) { return std::ofstream(name); }

}  // namespace qelm

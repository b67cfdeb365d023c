// Fields from files: CSV and NPY. The name comes first, then the number of vertices and the bytes.
#include "conditions/field_file.h"

#include <cmath>

#include "conditions/npy_array.h"
#include "fuzz/tool_checks.h"
#include "text/error.h"

namespace {

using qelm::fuzz::require;

std::vector<bool> all(std::size_t n) { return std::vector<bool>(n, true); }

void requireWrittenIsRead(const std::vector<double>& field) {
  qelm::fuzz::Memory file;
  writeNpy(field, field.size(), file);
  require(qelm::fuzz::sameBits(
              qelm::tool::parseField({"again.npy", ""}, file.bytes, all(field.size())), field),
          "what is written is read with the same bits");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string name = data[0] % 2 == 0 ? "a.npy" : "a.csv";
  const std::string column = data[0] < 128 ? "" : std::to_string(data[0] % 5);
  const int n = 1 + data[1] % 8;
  const std::string bytes(data + 2, data + size);
  try {
    const std::vector<double> field =
        qelm::tool::parseField({name, column}, bytes, all(static_cast<std::size_t>(n)));
    require(field.size() == static_cast<std::size_t>(n), "a value for each vertex");
    for (const double value : field) require(std::isfinite(value), "finite values");
    requireWrittenIsRead(field);
  } catch (const qelm::tool::FileError& error) {
    qelm::fuzz::requireMessage(error.what(), name + ":");
  }
  return 0;
}

// Loads and prescribed values as CSV.
#include <fmt/format.h>

#include <array>
#include <cmath>
#include <optional>
#include <set>

#include "conditions/vertex_csv.h"
#include "fields/field_csv.h"
#include "fuzz/tool_checks.h"
#include "text/error.h"

namespace {

using qelm::fuzz::require;
using qelm::tool::FixedVertex;

template <class Read>
auto accepted(Read read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const qelm::tool::FileError& error) {
    qelm::fuzz::requireMessage(error.what(), "a.csv:");
    return {};
  }
}

/// A field file can be a load: its column "value" is the load, its coordinates are passed over.
void requireFieldReadsAsLoad(const std::vector<double>& load) {
  qelm::tool::Mesh mesh;
  mesh.vertices.assign(3 * load.size(), 0.5);
  qelm::fuzz::Memory file;
  writeFieldCsv(mesh, qelm::tool::fieldTitles(1), load, file);
  const std::vector<bool> used(load.size(), true);
  require(qelm::fuzz::sameBits(qelm::tool::parseLoad(file.bytes, "field.csv", used), load),
          "a field that is written is read with the same bits");
}

void requireGoodFixes(const std::vector<FixedVertex>& fixes, int n) {
  const std::vector<bool> used(static_cast<std::size_t>(n), true);
  std::set<int> seen;
  std::string again;
  for (const FixedVertex& fix : fixes) {
    require(fix.vertex >= 0 && fix.vertex < n, "vertices in range");
    require(seen.insert(fix.vertex).second, "every vertex once");
    require(std::isfinite(fix.value), "finite values");
    require(fix.tag >= 1 && fix.tag <= 3, "tags from 1 to 3");
    again += fmt::format("{},{},{}\n", fix.vertex, fix.value, fix.tag);
  }
  const std::vector<FixedVertex> read = qelm::tool::parseFixes(again, "again.csv", used);
  const auto isSame = [](const FixedVertex& a, const FixedVertex& b) {
    return a.vertex == b.vertex && a.tag == b.tag &&
           qelm::fuzz::sameBits({&a.value, 1}, {&b.value, 1});
  };
  require(std::ranges::equal(read, fixes, isSame), "what is written is read");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const int n = 1 + data[0] % 12;
  const std::string text(data + 1, data + size);
  const std::vector<bool> used(static_cast<std::size_t>(n), true);
  const auto load = accepted([&] { return qelm::tool::parseLoad(text, "a.csv", used); });
  const auto fixes = accepted([&] { return qelm::tool::parseFixes(text, "a.csv", used); });
  if (load) {
    require(load->size() == static_cast<std::size_t>(n), "a load for every vertex");
    for (const double value : *load) require(std::isfinite(value), "finite loads");
    requireFieldReadsAsLoad(*load);
  }
  if (fixes) requireGoodFixes(*fixes, n);
  if (load && fixes)
    for (const FixedVertex& fix : *fixes)
      require((*load)[static_cast<std::size_t>(fix.vertex)] == fix.value, "both read the same");
  return 0;
}

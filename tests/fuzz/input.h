// Turns a fuzzer's bytes into arguments that the contract allows.
#ifndef QELM_TESTS_FUZZ_INPUT_H
#define QELM_TESTS_FUZZ_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <vector>

namespace qelm::fuzz {

/// Reads from the front of the data; past its end everything is zero.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

  bool empty() const { return rest_.empty(); }

  template <class T>
  T take() {
    T value{};
    const std::size_t count = std::min(sizeof(T), rest_.size());
    std::memcpy(&value, rest_.data(), count);
    rest_ = rest_.subspan(count);
    return value;
  }

  /// low .. high, both included.
  int takeInt(int low, int high) {
    return low + static_cast<int>(take<std::uint16_t>() % (high - low + 1));
  }

  /// Mostly small lattice values, so that coincidences happen; now and then any
  /// bit pattern at all, NaN and infinities among them.
  double takeDouble() {
    const auto kind = take<std::uint8_t>();
    if (kind < 200) return (static_cast<int>(kind) - 100) / 8.0;
    if (kind < 205) return std::numeric_limits<double>::quiet_NaN();
    if (kind < 210) return std::numeric_limits<double>::infinity();
    return take<double>();
  }

  std::vector<double> takeDoubles(std::size_t count) {
    std::vector<double> values(count);
    for (double& v : values) v = takeDouble();
    return values;
  }

  std::vector<std::int32_t> takeInts(std::size_t count, int low, int high) {
    std::vector<std::int32_t> values(count);
    for (std::int32_t& v : values) v = takeInt(low, high);
    return values;
  }

 private:
  std::span<const std::uint8_t> rest_;
};

/// A mesh with every index in range and nothing else promised.
struct FuzzMesh {
  int vertexCount;
  int triangleCount;
  std::vector<double> vertices;
  std::vector<std::int32_t> triangles;
  std::vector<std::int32_t> tags;
};

/// Three corners, mostly different ones: two steps from the first, mostly not 0.
inline void takeTriangle(Input& input, int first, FuzzMesh& mesh) {
  const int n = mesh.vertexCount;
  const int lowest = input.takeInt(0, 63) == 0 || n < 3 ? 0 : 1;
  const int second = first + input.takeInt(lowest, std::max(lowest, n - 2));
  const int third = second + input.takeInt(lowest, std::max(lowest, first + n - 1 - second));
  for (const int corner : {first, second, third}) mesh.triangles.push_back(corner % n);
}

/// Mostly meshes that construct: the first triangles start at each vertex in turn.
inline FuzzMesh takeMesh(Input& input) {
  FuzzMesh mesh;
  mesh.vertexCount = input.takeInt(1, 24);
  mesh.triangleCount = input.takeInt(1, 3 * mesh.vertexCount);
  for (int j = 0; j < mesh.triangleCount; ++j) {
    const bool inTurn = j < mesh.vertexCount;
    takeTriangle(input, inTurn ? j : input.takeInt(0, mesh.vertexCount - 1), mesh);
  }
  mesh.tags = input.takeInts(static_cast<std::size_t>(mesh.vertexCount), -1, 4);
  mesh.vertices = input.takeDoubles(3 * static_cast<std::size_t>(mesh.vertexCount));
  return mesh;
}

}  // namespace qelm::fuzz

#endif  // QELM_TESTS_FUZZ_INPUT_H

// The compiler turns the steps over a block's triangles into vector instructions, see the
// flags of this file.
#include "mesh/element_sums.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "interface/compiler.h"
#include "interface/index.h"
#include "mesh/element_block.h"

namespace qelm {
namespace {

using Corners = std::array<std::int32_t, 3>;

/// What is done with a mesh's triangles, one at a time.
class Elements {
 public:
  Elements(std::span<const double> coordinates, std::span<const std::int32_t> triangles,
           EdgeSums& sums)
      : coordinates_(coordinates), triangles_(triangles), sums_(sums) {}

  std::size_t count() const { return triangles_.size() / 3; }

  void gather(std::size_t triangle, std::size_t lane, BlockCorners& block) const {
    const Corners c = corners(triangle);
    for (std::size_t k = 0; k < 3; ++k) {
      const Vec3 p = point(c[k]);
      block.x[k][lane] = p.x;
      block.y[k][lane] = p.y;
      block.z[k][lane] = p.z;
    }
  }

  void add(std::size_t triangle, const ElementStiffness& e) {
    const Corners c = corners(triangle);
    repeatsAVertex_ |= c[0] == c[1] || c[1] == c[2] || c[0] == c[2];
    sums_.add(c[0], c[1], e.k01);
    sums_.add(c[1], c[2], e.k12);
    sums_.add(c[0], c[2], e.k02);
    sums_.addToDiagonal(c[0], e.k00);
    sums_.addToDiagonal(c[1], e.k11);
    sums_.addToDiagonal(c[2], e.k22);
  }

  bool repeatAVertex() const { return repeatsAVertex_; }

  bool areScattered() const { return sums_.isScattered(); }

  /// Has the memory ready that a block's triangles need: first their vertices, then, when
  /// these have come, the places of their contributions.
  void prefetchVertices(std::size_t first) const {
    for (const std::int32_t v : blockFrom(first)) {
      const double* const coordinates = coordinates_.data() + 3 * asIndex(v);
      prefetchToRead(coordinates);
      prefetchToRead(coordinates + 2);
      sums_.prefetchOwner(v);
    }
  }
  void prefetchLists(std::size_t first) const {
    for (const std::int32_t v : blockFrom(first)) sums_.prefetchList(v);
  }

 private:
  Corners corners(std::size_t j) const {
    return {triangles_[3 * j], triangles_[3 * j + 1], triangles_[3 * j + 2]};
  }

  Vec3 point(std::int32_t v) const {
    const auto base = 3 * asIndex(v);
    return {coordinates_[base], coordinates_[base + 1], coordinates_[base + 2]};
  }

  std::span<const std::int32_t> blockFrom(std::size_t first) const {
    const auto rest = triangles_.subspan(std::min(3 * first, triangles_.size()));
    return rest.first(std::min(3 * kBlock, rest.size()));
  }

  std::span<const double> coordinates_;
  std::span<const std::int32_t> triangles_;
  EdgeSums& sums_;
  bool repeatsAVertex_ = false;
};

/// While a block is evaluated, the next one's corners are gathered and the last one's
/// stiffnesses added. What the last triangles leave of their block, the last of them fills:
/// zeros would make the processor divide 0 by 0, which a host may have asked to hear of.
QELM_INLINE bool addElements(Elements elements) {
  static_assert(kBlock % kPauses == 0);
  constexpr std::size_t kLanesInPause = kBlock / kPauses;
  const std::size_t count = elements.count();
  const std::size_t inBlocks = (count + kBlock - 1) / kBlock * kBlock;
  const bool scattered = elements.areScattered();
  std::array<BlockCorners, 2> corners;
  std::array<BlockStiffness, 2> stiffness;
  const auto gather = [&](std::size_t j) {
    if (j < inBlocks) {
      elements.gather(std::min(j, count - 1), j % kBlock, corners[j / kBlock % 2]);
    }
  };
  const auto add = [&](std::size_t j) {
    elements.add(j, stiffness[j / kBlock % 2].of(j % kBlock));
  };

  for (std::size_t j = 0; j < kBlock; ++j) gather(j);
  for (std::size_t first = 0; first < inBlocks; first += kBlock) {
    if (scattered) {
      elements.prefetchVertices(first + 2 * kBlock);
      elements.prefetchLists(first);
    }
    const std::size_t block = first / kBlock % 2;
    stiffnessOfBlock(corners[block], stiffness[block], [&](std::size_t pause) {
      for (std::size_t lane = 0; lane < kLanesInPause; ++lane) {
        const std::size_t j = first + pause * kLanesInPause + lane;
        gather(j + kBlock);
        if (first > 0) add(j - kBlock);
      }
    });
  }
  for (std::size_t j = inBlocks < kBlock ? 0 : inBlocks - kBlock; j < count; ++j) add(j);
  return elements.repeatAVertex();
}

#if defined(QELM_X86)
__attribute__((target("avx2"), flatten)) bool addForAvx2(std::span<const double> coordinates,
                                                         std::span<const std::int32_t> triangles,
                                                         EdgeSums& sums) {
  return addElements({coordinates, triangles, sums});
}
#endif

}  // namespace

bool addElementsBaseline(std::span<const double> coordinates,
                         std::span<const std::int32_t> triangles, EdgeSums& sums) {
  return addElements({coordinates, triangles, sums});
}

#if defined(QELM_X86)
const AddElements addElementsAvx2 = addForAvx2;
#else
const AddElements addElementsAvx2 = nullptr;
#endif

AddElements fastestAddElements() { return hasAvx2() ? addElementsAvx2 : addElementsBaseline; }

}  // namespace qelm

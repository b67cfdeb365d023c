// What a handle points at: a mesh in system order with its factorised system.
#ifndef QELM_INTERFACE_MESH_SYSTEM_H
#define QELM_INTERFACE_MESH_SYSTEM_H

#include <Eigen/OrderingMethods>
#include <Eigen/SparseCholesky>
#include <Eigen/SparseCore>
#include <cstdint>
#include <memory>
#include <vector>

namespace qelm {

using SparseBlock = Eigen::SparseMatrix<double, Eigen::ColMajor, int>;
struct FieldBounds;
using FreeSolver = Eigen::SimplicialLDLT<SparseBlock, Eigen::Lower, Eigen::AMDOrdering<int>>;

}  // namespace qelm

/// With n vertices, of which t are tagged, and m triangles.
///
/// The members behind a shared pointer never change after construction, so copies made by dupl()
/// share them; the last owner frees them. Each object has vectors of its own. vertexPlace and
/// vertexOrder are inverse permutations of 0 .. n-1, and freeSolver was computed from
/// freeFreeBlock.
struct MeshSystem {
  std::int64_t fixedCount = 0;   ///< t; they occupy system indices 0 .. t-1
  std::int64_t vertexCount = 0;  ///< n
  /// 3n coordinates, packed xyz, system order.
  std::shared_ptr<const std::vector<double>> vertices;
  /// 3m system indices, in input triangle order.
  std::shared_ptr<const std::vector<std::int32_t>> triangles;
  /// (n-t) x t: rows of the free vertices, columns of the prescribed ones.
  std::shared_ptr<const qelm::SparseBlock> freeFixedBlock;
  /// (n-t) x (n-t), symmetric, both triangles stored.
  std::shared_ptr<const qelm::SparseBlock> freeFreeBlock;
  std::shared_ptr<const qelm::FreeSolver> freeSolver;
  std::vector<std::int32_t> vertexPlace;  ///< input index -> system index
  std::vector<std::int32_t> vertexOrder;  ///< system index -> input index
  std::vector<std::int32_t> tags;         ///< the caller's tags, input order
  /// The regions whose prescribed values bound fields; null after plain construction. Shared.
  std::shared_ptr<const qelm::FieldBounds> bounds;
};

#endif  // QELM_INTERFACE_MESH_SYSTEM_H

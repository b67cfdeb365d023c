#include "support/oracle.h"

#include <array>
#include <cmath>
#include <utility>

namespace qelm::test {
namespace {

using Vector = std::array<long double, 3>;

Vector edgeVector(const Mesh& mesh, std::int32_t from, std::int32_t to) {
  const Point p = mesh.point(from);
  const Point q = mesh.point(to);
  return {static_cast<long double>(q.x) - p.x, static_cast<long double>(q.y) - p.y,
          static_cast<long double>(q.z) - p.z};
}

long double cotangentBetween(const Vector& u, const Vector& v) {
  const Vector n = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                    u[0] * v[1] - u[1] * v[0]};
  const long double sine = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
  return (u[0] * v[0] + u[1] * v[1] + u[2] * v[2]) / sine;
}

bool prescribed(std::int32_t tag) { return tag >= 1 && tag <= 3; }

}  // namespace

DenseMatrix cotangentStiffness(const Mesh& mesh) {
  DenseMatrix k(mesh.tags.size());
  for (std::size_t t = 0; t < mesh.triangles.size(); t += 3) {
    for (std::size_t corner = 0; corner < 3; ++corner) {
      const std::int32_t apex = mesh.triangles[t + corner];
      const std::int32_t a = mesh.triangles[t + (corner + 1) % 3];
      const std::int32_t b = mesh.triangles[t + (corner + 2) % 3];
      const long double w =
          cotangentBetween(edgeVector(mesh, apex, a), edgeVector(mesh, apex, b)) / 2;
      const auto i = static_cast<std::size_t>(a);
      const auto j = static_cast<std::size_t>(b);
      k.at(i, j) -= w;
      k.at(j, i) -= w;
      k.at(i, i) += w;
      k.at(j, j) += w;
    }
  }
  return k;
}

std::vector<long double> solveDense(DenseMatrix matrix, std::vector<long double> b) {
  const std::size_t n = matrix.n;
  for (std::size_t column = 0; column < n; ++column) {
    std::size_t pivot = column;
    for (std::size_t row = column + 1; row < n; ++row) {
      if (std::fabs(matrix.at(row, column)) > std::fabs(matrix.at(pivot, column))) pivot = row;
    }
    for (std::size_t j = column; j < n; ++j) std::swap(matrix.at(pivot, j), matrix.at(column, j));
    std::swap(b[pivot], b[column]);
    for (std::size_t row = column + 1; row < n; ++row) {
      const long double factor = matrix.at(row, column) / matrix.at(column, column);
      if (factor == 0) continue;
      for (std::size_t j = column; j < n; ++j) matrix.at(row, j) -= factor * matrix.at(column, j);
      b[row] -= factor * b[column];
    }
  }
  for (std::size_t row = n; row-- > 0;) {
    for (std::size_t j = row + 1; j < n; ++j) b[row] -= matrix.at(row, j) * b[j];
    b[row] /= matrix.at(row, row);
  }
  return b;
}

Field oracleField(const Mesh& mesh, const Field& values, const Field& load) {
  const DenseMatrix k = cotangentStiffness(mesh);
  std::vector<std::size_t> free;
  for (std::size_t i = 0; i < mesh.tags.size(); ++i) {
    if (!prescribed(mesh.tags[i])) free.push_back(i);
  }
  DenseMatrix freeBlock(free.size());
  std::vector<long double> b(free.size(), 0.0L);
  for (std::size_t r = 0; r < free.size(); ++r) {
    if (!load.empty()) b[r] = -static_cast<long double>(load[free[r]]);
    for (std::size_t c = 0; c < free.size(); ++c) freeBlock.at(r, c) = k.at(free[r], free[c]);
    for (std::size_t i = 0; i < mesh.tags.size(); ++i) {
      if (prescribed(mesh.tags[i])) b[r] -= k.at(free[r], i) * values[i];
    }
  }
  const std::vector<long double> solved = solveDense(std::move(freeBlock), std::move(b));
  Field field = values;
  for (std::size_t r = 0; r < free.size(); ++r) field[free[r]] = static_cast<double>(solved[r]);
  return field;
}

}  // namespace qelm::test

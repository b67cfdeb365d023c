// Divisions two at a time: the same quotients in half the time. The compiler does not vectorise
// these loops at the library's level of optimisation.
#ifndef QELM_FACTOR_QUOTIENTS_H
#define QELM_FACTOR_QUOTIENTS_H

#include <Eigen/Core>

namespace qelm::factor {

/// values[k] /= divisor for k < count.
inline void divide(double* values, Eigen::Index count, double divisor) {
  const Eigen::Index even = count - count % 2;
  const Eigen::Array2d divisors = Eigen::Array2d::Constant(divisor);
  for (Eigen::Index k = 0; k < even; k += 2) Eigen::Map<Eigen::Array2d>(values + k) /= divisors;
  if (even < count) values[even] /= divisor;
}

/// to[k * stride] = values[k] / divisors[k] for k < count.
inline void divideStrided(const double* values, const double* divisors, Eigen::Index count,
                          double* to, Eigen::Index stride) {
  const Eigen::Index even = count - count % 2;
  for (Eigen::Index k = 0; k < even; k += 2) {
    const Eigen::Array2d quotients = Eigen::Map<const Eigen::Array2d>(values + k) /
                                     Eigen::Map<const Eigen::Array2d>(divisors + k);
    to[k * stride] = quotients[0];
    to[(k + 1) * stride] = quotients[1];
  }
  if (even < count) to[even * stride] = values[even] / divisors[even];
}

}  // namespace qelm::factor

#endif  // QELM_FACTOR_QUOTIENTS_H

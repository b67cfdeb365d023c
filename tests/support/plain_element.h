// The element stiffness of a P1 triangle in its plainest form: scalar arithmetic written out.
#ifndef QELM_TESTS_SUPPORT_PLAIN_ELEMENT_H
#define QELM_TESTS_SUPPORT_PLAIN_ELEMENT_H

namespace qelm::test {

/// The six different entries of the symmetric 3 x 3 matrix.
struct PlainStiffness {
  double k00, k11, k22;
  double k01, k12, k02;
};

/// Of the triangle of three points, x, y, z each.
PlainStiffness plainStiffness(const double* p0, const double* p1, const double* p2);

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_PLAIN_ELEMENT_H

// Whether the wide numbers that some tests compare with are wide.
#ifndef QELM_TESTS_SUPPORT_LONG_DOUBLE_H
#define QELM_TESTS_SUPPORT_LONG_DOUBLE_H

namespace qelm::test {

/// True where long double computes with more bits than double. Valgrind computes with
/// the bits of double, whatever the type says; so this is found out when it runs.
inline bool longDoubleIsWide() {
  volatile long double sum = 1;
  sum = sum + 0x1p-60L;
  return sum != 1;
}

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_LONG_DOUBLE_H

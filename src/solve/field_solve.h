// Fields between prescribed values, from a stored factorisation.
#ifndef QELM_SOLVE_FIELD_SOLVE_H
#define QELM_SOLVE_FIELD_SOLVE_H

#include <span>

#include "interface/mesh_system.h"

namespace qelm {

/// Discrete harmonic field, K_ff u_f = -K_fb u_b, in input order.
///
/// values and result hold n entries each and may be the same array: all reads
/// of values precede the first write to result. Only the entries of tagged
/// vertices are read; they come back bit for bit. If the factorisation failed,
/// every free vertex gets 0.0. Reads the system only, takes no lock.
void solveDirichlet(const MeshSystem& system, std::span<const double> values,
                    std::span<double> result);

/// The same with a load, K_ff u_f = -K_fb u_b - load_f: the rows of the free
/// vertices of K u + load = 0. The load enters as it is, one value for each free
/// vertex, without mass matrix or scaling; its entries at tagged vertices are not
/// read. Any of the three arrays may be the same.
void solveWithLoad(const MeshSystem& system, std::span<const double> values,
                   std::span<const double> load, std::span<double> result);

}  // namespace qelm

#endif  // QELM_SOLVE_FIELD_SOLVE_H

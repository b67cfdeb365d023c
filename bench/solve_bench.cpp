// Solves through the exports, beside bare Eigen and CHOLMOD with factors of the same
// free-free block and the very right-hand side that the export forms: zero but beside the
// prescribed rims, or dense with a load. And several fields together, beside one after the other.
#include <cstddef>
#include <memory>

#include "peers/cholmod.h"
#include "qelm.h"
#include "support/contender.h"

namespace {

using qelm::SparseBlock;
using qelm::bench::Case;
using qelm::bench::Run;

constexpr int kTogether = 8;

struct Work {
  qelm::bench::SystemHandle system;
  qelm::test::Field values;
  Eigen::VectorXd rightHandSide;          ///< -K_fb u_b
  Eigen::VectorXd rightHandSideWithLoad;  ///< with the values as load, too
  mutable qelm::test::Field result;
};

/// The free vertices' values in system order.
Eigen::VectorXd freeValues(const MeshSystem& system, const qelm::test::Field& values) {
  Eigen::VectorXd free(system.vertexCount - system.fixedCount);
  for (Eigen::Index i = 0; i < free.size(); ++i) {
    const auto s = static_cast<std::size_t>(system.fixedCount + i);
    free[i] = values[static_cast<std::size_t>(system.vertexOrder[s])];
  }
  return free;
}

std::shared_ptr<const Work> workOf(const Case& c) {
  return qelm::bench::sharedBetweenContenders<Work>(c, [](const Case& which) {
    const qelm::test::Mesh mesh = makeMesh(which);
    Work work{qelm::bench::construct(mesh),
              qelm::bench::waves(mesh),
              {},
              {},
              qelm::test::Field(mesh.tags.size())};
    const MeshSystem& system = *work.system;
    Eigen::VectorXd prescribed(system.fixedCount);
    for (Eigen::Index s = 0; s < prescribed.size(); ++s) {
      const auto input = system.vertexOrder[static_cast<std::size_t>(s)];
      prescribed[s] = work.values[static_cast<std::size_t>(input)];
    }
    work.rightHandSide = -(*system.freeFixedBlock * prescribed);
    work.rightHandSideWithLoad = work.rightHandSide - freeValues(system, work.values);
    return work;
  });
}

Run dirichlet(const Case& c) {
  return [work = workOf(c)] {
    int status = 0;
    qelmsolveTagged(work->system.get(), work->values.data(), work->result.data(), &status);
    return work->result.size();
  };
}

Run withLoad(const Case& c) {
  return [work = workOf(c)] {
    int status = 0;
    qelmsolvePTagged(work->system.get(), work->values.data(), work->values.data(),
                     work->result.data(), &status);
    return work->result.size();
  };
}

/// Prescribed values of several fields, no two alike, and room for their results.
struct Fields {
  std::shared_ptr<const Work> work;
  qelm::test::Field values;
  qelm::test::Field results;
};

std::shared_ptr<Fields> fieldsOf(const Case& c) {
  auto fields = std::make_shared<Fields>(Fields{workOf(c), {}, {}});
  for (int i = 0; i < kTogether; ++i) {
    for (const double v : fields->work->values) fields->values.push_back(v + i);
  }
  fields->results.resize(fields->values.size());
  return fields;
}

Run together(const Case& c) {
  return [fields = fieldsOf(c)] {
    int status = 0;
    qelmsolveManyTagged(fields->work->system.get(), kTogether, fields->values.data(), nullptr,
                        fields->results.data(), &status);
    return fields->results.size();
  };
}

Run oneByOne(const Case& c) {
  return [fields = fieldsOf(c)] {
    int status = 0;
    const std::size_t n = fields->work->values.size();
    for (std::size_t at = 0; at < fields->values.size(); at += n) {
      qelmsolveTagged(fields->work->system.get(), fields->values.data() + at,
                      fields->results.data() + at, &status);
    }
    return fields->results.size();
  };
}

using RightHandSide = Eigen::VectorXd Work::*;

template <class Solver>
Run solveWith(std::shared_ptr<const Work> work, std::shared_ptr<const Solver> solver,
              RightHandSide rightHandSide) {
  return [=] {
    const Eigen::VectorXd solution = solver->solve((*work).*rightHandSide);
    return static_cast<std::size_t>(solution.size());
  };
}

template <RightHandSide rightHandSide>
Run bareEigen(const Case& c) {
  const auto work = workOf(c);
  return solveWith<qelm::FreeSolver>(work, work->system->freeSolver, rightHandSide);
}

#if defined(QELM_HAVE_CHOLMOD)
/// One factor for both right-hand sides: at a million vertices it takes a minute to compute.
template <class Solver>
std::shared_ptr<const Solver> cholmodFactor(const Case& c) {
  return *qelm::bench::sharedBetweenContenders<std::shared_ptr<const Solver>>(
      c, [](const Case& which) {
        return std::make_shared<const Solver>(*workOf(which)->system->freeFreeBlock);
      });
}

template <class Solver, RightHandSide rightHandSide>
Run cholmod(const Case& c) {
  return solveWith<Solver>(workOf(c), cholmodFactor<Solver>(c), rightHandSide);
}
#endif

}  // namespace

int main(int argumentCount, char** arguments) {
  using qelm::bench::addContender;
  addContender("solve", "qelm", dirichlet);
  addContender("solve", "qelm_load", withLoad);
  addContender("solve", "eigen", bareEigen<&Work::rightHandSide>);
  addContender("solve", "eigen_load", bareEigen<&Work::rightHandSideWithLoad>);
  addContender("solve", "together", together, qelm::bench::upTo(1'000'000));
  addContender("solve", "one_by_one", oneByOne, qelm::bench::upTo(1'000'000));
#if defined(QELM_HAVE_CHOLMOD)
  using qelm::bench::CholmodSimplicial;
  using qelm::bench::CholmodSimplicialOwnOrder;
  using qelm::bench::CholmodSupernodal;
  const auto upToAMillion = qelm::bench::upTo(1'000'000);
  addContender("solve", "cholmod_simplicial", cholmod<CholmodSimplicial, &Work::rightHandSide>,
               upToAMillion);
  addContender("solve", "cholmod_simplicial_load",
               cholmod<CholmodSimplicial, &Work::rightHandSideWithLoad>, upToAMillion);
  addContender("solve", "cholmod_supernodal", cholmod<CholmodSupernodal, &Work::rightHandSide>,
               upToAMillion);
  addContender("solve", "cholmod_supernodal_load",
               cholmod<CholmodSupernodal, &Work::rightHandSideWithLoad>, upToAMillion);
  addContender("solve", "cholmod_simplicial_own_order",
               cholmod<CholmodSimplicialOwnOrder, &Work::rightHandSide>, upToAMillion);
  addContender("solve", "cholmod_simplicial_own_order_load",
               cholmod<CholmodSimplicialOwnOrder, &Work::rightHandSideWithLoad>, upToAMillion);
#endif
  return qelm::bench::runContenders(argumentCount, arguments);
}

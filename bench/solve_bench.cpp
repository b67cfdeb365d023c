// Solves through the exports, beside bare Eigen and CHOLMOD with factors of the same
// free-free block; and several fields together, beside one after the other.
#include <cstddef>
#include <memory>

#include "qelm.h"
#include "support/contender.h"

#if defined(QELM_HAVE_CHOLMOD)
#include <Eigen/CholmodSupport>
#endif

namespace {

using qelm::SparseBlock;
using qelm::bench::Case;
using qelm::bench::Run;

constexpr int kTogether = 8;

struct Work {
  qelm::bench::SystemHandle system;
  qelm::test::Field values;
  mutable qelm::test::Field result;
};

std::shared_ptr<const Work> workOf(const Case& c) {
  return qelm::bench::sharedBetweenContenders<Work>(c, [](const Case& which) {
    const qelm::test::Mesh mesh = makeMesh(which);
    return Work{qelm::bench::construct(mesh), qelm::bench::waves(mesh),
                qelm::test::Field(mesh.tags.size())};
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

template <class Solver>
Run solveWith(std::shared_ptr<const Work> work, std::shared_ptr<const Solver> solver) {
  const Eigen::VectorXd rhs = Eigen::VectorXd::Random(work->system->freeFreeBlock->rows());
  return [=] {
    const Eigen::VectorXd solution = solver->solve(rhs);
    return static_cast<std::size_t>(solution.size());
  };
}

Run bareEigen(const Case& c) {
  const auto work = workOf(c);
  return solveWith<qelm::FreeSolver>(work, work->system->freeSolver);
}

#if defined(QELM_HAVE_CHOLMOD)
template <class Solver>
Run cholmod(const Case& c) {
  const auto work = workOf(c);
  return solveWith<Solver>(work, std::make_shared<const Solver>(*work->system->freeFreeBlock));
}
#endif

}  // namespace

int main(int argumentCount, char** arguments) {
  using qelm::bench::addContender;
  addContender("solve", "qelm", dirichlet);
  addContender("solve", "qelm_load", withLoad);
  addContender("solve", "eigen", bareEigen);
  addContender("solve", "together", together, qelm::bench::upTo(1'000'000));
  addContender("solve", "one_by_one", oneByOne, qelm::bench::upTo(1'000'000));
#if defined(QELM_HAVE_CHOLMOD)
  addContender("solve", "cholmod_simplicial", cholmod<Eigen::CholmodSimplicialLDLT<SparseBlock>>,
               qelm::bench::upTo(1'000'000));
  addContender("solve", "cholmod_supernodal", cholmod<Eigen::CholmodSupernodalLLT<SparseBlock>>,
               qelm::bench::upTo(1'000'000));
#endif
  return qelm::bench::runContenders(argumentCount, arguments);
}

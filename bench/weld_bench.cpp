// qelmWeld beside its plain form (two tree builds, one query per vertex into a vector,
// a node-based set of triangles), VTK's merging of points with a tolerance, and the
// nearest that CGAL has to it. The input is as many triangles as the case's size says,
// each with corners of its own, as an STL file has them; scattered points besides.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "qelm.h"
#include "support/contender.h"
#include "support/plain_weld.h"
#include "support/random.h"

#if defined(QELM_HAVE_CGAL)
#include "peers/cgal.h"
#endif
#if defined(QELM_HAVE_VTK)
#include "peers/vtk.h"
#endif

namespace {

using qelm::bench::Case;
using qelm::bench::Run;
using qelm::bench::upTo;
using qelm::test::Mesh;

struct Work {
  Mesh soup;
  double tolerance = 1e-9;
};
using MakeWork = Work (*)(const Case&);

/// In the order of the triangles, or with the corners' numbers in a random one.
Work soupOf(const Case& c) {
  const Mesh soup = qelm::test::asSoup(qelm::bench::makeMesh({c.surface, false, c.size / 2}));
  if (!c.shuffled) return {soup};
  qelm::test::Random random(1);
  return {relabelled(soup, qelm::test::permutation(random, soup.vertexCount()))};
}

/// Every corner is moved by less than the tolerance.
Work noisySoupOf(const Case& c) {
  Work work = soupOf(c);
  qelm::test::Random random(1);
  for (double& x : work.soup.vertices) x += qelm::test::uniform(random, -1e-10, 1e-10);
  return work;
}

/// Uniform in the unit cube, with `neighbours` others within the tolerance of a point
/// on average. As many points as the size says, whatever the surface.
template <int neighbours>
Work scattered(const Case& c) {
  qelm::test::Random random(1);
  Work work;
  for (int k = 0; k < 3 * c.size; ++k) {
    work.soup.vertices.push_back(qelm::test::uniform(random, 0, 1));
  }
  work.soup.tags.assign(static_cast<std::size_t>(c.size), 0);
  constexpr double kBallVolume = 4.18879;  // of radius 1
  work.tolerance = std::cbrt(neighbours / (c.size * kBallVolume));
  return work;
}

template <MakeWork make>
std::shared_ptr<const Work> workOf(const Case& c) {
  // What is shared is told apart by its type, and each stage needs a soup of its own.
  struct OfStage : Work {};
  return qelm::bench::sharedBetweenContenders<OfStage>(
      c, [](const Case& which) { return OfStage{make(which)}; });
}

Run library(std::shared_ptr<const Work> work) {
  struct Outputs {
    std::vector<double> vertices;
    std::vector<int> triangles;
    std::vector<int> map;
  };
  const auto out = std::make_shared<Outputs>();
  out->vertices.resize(work->soup.vertices.size());
  out->triangles.resize(work->soup.triangles.size());
  out->map.resize(work->soup.tags.size());
  return [=] {
    int vertexCount = 0;
    int triangleCount = 0;
    qelmWeld(work->soup.vertexCount(), work->soup.vertices.data(), work->soup.triangleCount(),
             work->soup.triangles.data(), work->tolerance, out->vertices.data(),
             out->triangles.data(), out->map.data(), &vertexCount, &triangleCount);
    return static_cast<std::size_t>(vertexCount);
  };
}

Run plain(std::shared_ptr<const Work> work) {
  return [=] {
    const auto welded =
        qelm::test::plainWeld(work->soup.vertices, work->soup.triangles, work->tolerance);
    return welded.vertices.size() / 3;
  };
}

#if defined(QELM_HAVE_VTK)
template <std::size_t (*clean)(vtkPolyData&, double)>
Run vtk(std::shared_ptr<const Work> work) {
  return
      [work, mesh = qelm::bench::vtkMesh(work->soup, {})] { return clean(*mesh, work->tolerance); };
}
#endif

#if defined(QELM_HAVE_CGAL)
Run cgalEqual(std::shared_ptr<const Work> work) {
  return [soup = qelm::bench::cgalSoup(work->soup)] { return qelm::bench::cgalMergeEqual(*soup); };
}

Run cgalGrid(std::shared_ptr<const Work> work) {
  return [work, soup = qelm::bench::cgalSoup(work->soup)] {
    return qelm::bench::cgalGridSimplify(*soup, work->tolerance);
  };
}
#endif

template <MakeWork make>
void add(const char* stage, const char* contender, Run (*run)(std::shared_ptr<const Work>),
         const qelm::bench::TakesPart& takesPart) {
  qelm::bench::addContender(
      stage, contender, [=](const Case& c) { return run(workOf<make>(c)); }, takesPart);
}

template <MakeWork make>
void addSoup(const char* stage, [[maybe_unused]] const qelm::bench::TakesPart& vtkCanClean) {
  add<make>(stage, "qelm", library, upTo(3'000'000));
  add<make>(stage, "plain", plain, upTo(1'000'000));
#if defined(QELM_HAVE_VTK)
  add<make>(stage, "vtk", vtk<qelm::bench::vtkClean>, vtkCanClean);
  add<make>(stage, "vtk_static", vtk<qelm::bench::vtkStaticClean>, upTo(1'000'000));
#endif
#if defined(QELM_HAVE_CGAL)
  add<make>(stage, "cgal_grid", cgalGrid, upTo(1'000'000));
#endif
}

template <MakeWork make>
void addScattered(const char* stage) {
  add<make>(stage, "qelm", library, upTo(100'000));
  add<make>(stage, "plain", plain, upTo(100'000));
}

}  // namespace

int main(int argumentCount, char** arguments) {
  addSoup<soupOf>("weld_soup", upTo(1'000'000));
#if defined(QELM_HAVE_CGAL)
  add<soupOf>("weld_soup", "cgal_equal", cgalEqual, upTo(1'000'000));
#endif
  // Of a plane that is a little thick vtkCleanPolyData makes a box of few cells, and
  // takes a minute for 10 thousand triangles.
  addSoup<noisySoupOf>("weld_noisy_soup", [](const Case& c) {
    return c.surface != qelm::bench::Surface::kGrid && c.size <= 1'000'000;
  });
  addScattered<scattered<1>>("weld_scattered_1");
  addScattered<scattered<100>>("weld_scattered_100");
  return qelm::bench::runContenders(argumentCount, arguments);
}

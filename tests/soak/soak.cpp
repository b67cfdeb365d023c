// usage: soak SECONDS SEED
//
// Threads that build, solve, cut, check, weld, export, duplicate, hand over and free at
// random, on random meshes, while one allocation in some fails. What was solved once is
// compared, bit by bit, with every later solve of the same system, on whichever thread.
// Every few seconds all threads end, everything is freed, and no more blocks may be
// allocated than at the end of the first round, but for a few. For builds with a sanitizer, which
// looks for every single block at the end: see scripts/soak.
#include <atomic>
#include <bit>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "qelm.h"
#include "soak/shaky_heap.h"
#include "support/meshes.h"
#include "support/random.h"

namespace qelm::test {
namespace {

using Clock = std::chrono::steady_clock;
constexpr int kThreads = 6;
constexpr std::size_t kMostHandles = 6;
constexpr std::chrono::seconds kRound{5};
/// What the runtime allocates once, when something happens for the first time.
constexpr long kOnce = 16;

struct Free {
  void operator()(MeshSystem* handle) const { qelmfree(handle); }
};

/// A handle, and what one prescribed field gave on it.
struct System {
  std::unique_ptr<MeshSystem, Free> handle;
  Field values;
  Field solved;
};

std::atomic<std::int64_t> calls = 0;
std::atomic<std::int64_t> exhausted = 0;

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "soak: %s\n", what);
  std::abort();
}

/// What threads hand to one another.
class Mailbox {
 public:
  void put(System system) {
    const std::scoped_lock lock(mutex_);
    if (waiting_.size() < kThreads) waiting_.push_back(std::move(system));
  }
  std::optional<System> take() {
    const std::scoped_lock lock(mutex_);
    if (waiting_.empty()) return {};
    System system = std::move(waiting_.back());
    waiting_.pop_back();
    return system;
  }

 private:
  std::mutex mutex_;
  std::vector<System> waiting_;
};

Mesh randomMesh(Random& random) {
  const int size = uniformInt(random, 2, 5);
  Mesh mesh;
  switch (uniformInt(random, 0, 5)) {
    case 0:
      mesh = sphereMesh(uniformInt(random, 0, 2));
      break;
    case 1:
      mesh = torusMesh(3 * size, 2 * size);
      break;
    case 2:
      mesh = sliverStrip(3 * size, 1e-3);
      break;
    case 3:
      mesh = asSoup(gridMesh(size, size));
      break;
    case 4:
      mesh = openSurface(8 * size, 8 * size, random());
      break;
    default:
      mesh = fan(3 * size);
  }
  std::vector<std::int32_t> tags(mesh.tags.size());
  for (std::int32_t& tag : tags) tag = uniformInt(random, 0, 4) == 0 ? uniformInt(random, 1, 3) : 0;
  tags[0] = 1;
  if (uniformInt(random, 0, 5) == 0) {  // a defect
    mesh.triangles[0] = mesh.triangles[1];
  }
  if (uniformInt(random, 0, 5) == 0) {
    for (int k = 0; k < 3; ++k)
      mesh.vertices[static_cast<std::size_t>(3 + k)] = mesh.vertices[static_cast<std::size_t>(k)];
  }
  return mesh.withTags(tags);
}

Field randomField(Random& random, std::size_t size) {
  Field field(size);
  for (double& value : field) value = uniform(random, -1, 1);
  return field;
}

bool sameWords(const Field& a, const Field& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (std::isnan(a[i]) && std::isnan(b[i])) continue;
    if (std::bit_cast<std::uint64_t>(a[i]) != std::bit_cast<std::uint64_t>(b[i])) return false;
  }
  return true;
}

class Worker {
 public:
  Worker(int number, std::uint64_t seed, Mailbox& mailbox)
      : path_("soak-" + std::to_string(number)), random_(seed), mailbox_(mailbox) {}

  void runUntil(Clock::time_point end) {
    while (Clock::now() < end) {
      build();
      for (int k = uniformInt(random_, 1, 12); k > 0 && !systems_.empty(); --k) useOne();
      if (systems_.size() > kMostHandles || uniformInt(random_, 0, 3) == 0) dropOne();
    }
  }

 private:
  /// Runs a call, one in three with a heap that fails somewhere on its way. False if it did.
  template <class Call>
  bool survives(Call call) {
    calls.fetch_add(1, std::memory_order_relaxed);
    const int at = uniformInt(random_, 0, 2) == 0 ? 1 << uniformInt(random_, 0, 9) : 0;
    try {
      const ShakyHeap heap(at == 0 ? 0 : uniformInt(random_, 1, at));
      call();
    } catch (const std::bad_alloc&) {
      if (at == 0) fail("memory ran out by itself");
      exhausted.fetch_add(1, std::memory_order_relaxed);
      return false;
    }
    return true;
  }

  void build() {
    const Mesh mesh = randomMesh(random_);
    switch (uniformInt(random_, 0, 5)) {
      case 0:
        check(mesh);
        break;
      case 1:
        predict(mesh);
        break;
      case 2:
        weld(mesh);
        break;
      default:
        keep(construct(mesh), mesh.tags.size());
    }
  }

  void check(const Mesh& mesh) {
    survives([&] {
      qelmcheckTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                      mesh.triangles.data(), mesh.tags.data(), nullptr);
    });
  }

  void predict(const Mesh& mesh) {
    const int robust = uniformInt(random_, 0, 1);
    survives([&] {
      qelmpredictTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                        mesh.triangles.data(), mesh.tags.data(), robust, nullptr);
    });
  }

  /// A handle from one of the three constructors; null for a defect and without memory.
  MeshSystem* construct(const Mesh& mesh) {
    const int n = mesh.vertexCount(), m = mesh.triangleCount();
    const double* const xyz = mesh.vertices.data();
    const int *const triangles = mesh.triangles.data(), *const tags = mesh.tags.data();
    const int constructor = uniformInt(random_, 0, 2), robust = uniformInt(random_, 0, 1);
    const std::int64_t mostBytes = 1 << uniformInt(random_, 10, 30);
    MeshSystem* made = nullptr;
    int status = -1, tagged = -1;
    survives([&] {
      if (constructor == 0)
        qelmctorTagged(n, xyz, m, triangles, tags, &tagged, &status, &made);
      else if (constructor == 1)
        qelmctorRobustTagged(n, xyz, m, triangles, tags, &tagged, &status, &made);
      else
        qelmctorLimitedTagged(n, xyz, m, triangles, tags, robust, mostBytes, nullptr, &tagged,
                              &status, &made);
    });
    if (made != nullptr && status != 0) fail("a handle with a status");
    return made;
  }

  /// Takes the handle over and solves a field on it.
  void keep(MeshSystem* made, std::size_t n) {
    if (made == nullptr) return;
    System system{std::unique_ptr<MeshSystem, Free>(made), randomField(random_, n), Field(n)};
    int status = -1;
    qelmsolveTagged(made, system.values.data(), system.solved.data(), &status);
    systems_.push_back(std::move(system));
  }

  void weld(const Mesh& mesh) {
    Field vertices = mesh.vertices;
    std::vector<int> triangles = mesh.triangles, map(mesh.tags.size());
    int kept = 0, keptTriangles = 0;
    survives([&] {
      qelmWeld(mesh.vertexCount(), vertices.data(), mesh.triangleCount(), triangles.data(), 1e-9,
               vertices.data(), triangles.data(), map.data(), &kept, &keptTriangles);
    });
  }

  System& anyOne() {
    return systems_[static_cast<std::size_t>(
        uniformInt(random_, 0, static_cast<int>(systems_.size()) - 1))];
  }

  void useOne() {
    System& system = anyOne();
    switch (uniformInt(random_, 0, 6)) {
      case 0:
      case 1:
        solve(system);
        break;
      case 2:
        solveMany(system);
        break;
      case 3:
        cut(system);
        break;
      case 4:
        join(system);
        break;
      case 5:
        duplicate(system);
        break;
      default:
        if (uniformInt(random_, 0, 9) == 0) {
          survives([&] { wobj(system.handle.get(), system.solved.data(), path_.c_str()); });
        }
    }
  }

  void solve(const System& system) {
    Field result(system.values.size());
    int status = -1;
    const bool done = survives([&] {
      qelmsolveTagged(system.handle.get(), system.values.data(), result.data(), &status);
    });
    if (done && !sameWords(result, system.solved)) fail("a solve gave other bits");
    const bool looked = survives([&] {
      qelmsolveCheckedTagged(system.handle.get(), 1, system.values.data(), nullptr, result.data(),
                             nullptr, &status);
    });
    if (looked && (status != 0 || !sameWords(result, system.solved)))
      fail("a checked solve gave other bits");
  }

  void solveMany(const System& system) {
    const int count = uniformInt(random_, 1, 9);
    Field fields;
    for (int k = 0; k < count; ++k) {
      fields.insert(fields.end(), system.values.begin(), system.values.end());
    }
    int status = -1;
    const bool done = survives([&] {
      qelmsolveManyTagged(system.handle.get(), count, fields.data(), nullptr, fields.data(),
                          &status);
    });
    fields.erase(fields.begin(), fields.end() - static_cast<std::ptrdiff_t>(system.values.size()));
    if (done && !sameWords(fields, system.solved)) fail("solves side by side gave other bits");
  }

  void cut(const System& system) {
    const Field levels = randomField(random_, 3);
    IsoPointMatrix* points = nullptr;
    IsoEdgeMatrix* edges = nullptr;
    survives([&] {
      qelisoline(system.handle.get(), system.solved.data(), 3, levels.data(), &points, &edges);
    });
    qelfreeisoline(points, edges);
  }

  void join(const System& system) {
    const Field levels = randomField(random_, 3);
    QelmCurves* curves = nullptr;
    int status = -1;
    survives([&] {
      qelmcurvesTagged(system.handle.get(), system.solved.data(), 3, levels.data(), &curves,
                       &status);
    });
    qelmfreecurves(curves);
  }

  void duplicate(const System& system) {
    MeshSystem* copy = nullptr;
    if (!survives([&] { dupl(system.handle.get(), &copy); })) return;
    mailbox_.put({std::unique_ptr<MeshSystem, Free>(copy), system.values, system.solved});
    if (std::optional<System> other = mailbox_.take()) systems_.push_back(std::move(*other));
  }

  void dropOne() {
    if (systems_.empty()) return;
    std::swap(anyOne(), systems_.back());
    systems_.pop_back();
  }

  std::string path_;
  Random random_;
  Mailbox& mailbox_;
  std::vector<System> systems_;
};

void runRound(std::uint64_t seed, Clock::time_point end) {
  Mailbox mailbox;
  std::vector<std::thread> threads;
  for (int k = 0; k < kThreads; ++k) {
    threads.emplace_back([&mailbox, seed, k, end] {
      Worker(k, 1000 * seed + static_cast<std::uint64_t>(k), mailbox).runUntil(end);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

/// Megabytes that the process has in memory.
long residentMegabytes() {
  std::ifstream file("/proc/self/statm");
  long total = 0, resident = 0;
  file >> total >> resident;
  return resident * 4096 / 1'000'000;
}

int run(int seconds, std::uint64_t seed) {
  const Clock::time_point end = Clock::now() + std::chrono::seconds(seconds);
  std::optional<long> blocksAfterFirst;
  for (std::uint64_t round = 0; Clock::now() < end; ++round) {
    runRound(seed + round, std::min(end, Clock::now() + kRound));
    const long resident = residentMegabytes();
    const long blocks = ShakyHeap::liveBlocks();
    std::printf("round %d: %lld calls, %lld without memory; %ld blocks, %ld MB\n",
                static_cast<int>(round), static_cast<long long>(calls),
                static_cast<long long>(exhausted), blocks, resident);
    std::fflush(stdout);
    if (!blocksAfterFirst) blocksAfterFirst = ShakyHeap::liveBlocks();
    if (blocks > *blocksAfterFirst + kOnce) fail("blocks were not given back");
  }
  return 0;
}

}  // namespace
}  // namespace qelm::test

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: soak SECONDS SEED\n");
    return 2;
  }
  return qelm::test::run(std::atoi(argv[1]), std::strtoull(argv[2], nullptr, 10));
}

// Heat maps through the export: the files byte for byte, the messages, and what is
// left when something cannot be opened.
#include <gtest/gtest.h>

#ifdef _WIN32
#include <windows.h>
#endif

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "export/no_permission.h"
#include "export/plain_heat_map.h"
#include "interface/mesh_system.h"
#include "qelm.h"
#include "support/handle.h"
#include "support/meshes.h"
#include "support/random.h"

namespace qelm::test {
namespace {

namespace fs = std::filesystem;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

#ifdef _WIN32
const std::string kLineEnd = "\r\n";
#else
const std::string kLineEnd = "\n";
#endif

/// As it stands in the file, text mode undone nowhere.
std::string bytesOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  EXPECT_TRUE(in.is_open()) << file;
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string withLineEnds(std::string text) {
  std::string result;
  for (const char c : text) result += c == '\n' ? kLineEnd : std::string(1, c);
  return result;
}

MeshSystem meshOnly(std::vector<double> vertices, std::vector<std::int32_t> triangles) {
  MeshSystem system;
  system.vertices = std::make_shared<const std::vector<double>>(std::move(vertices));
  system.triangles = std::make_shared<const std::vector<std::int32_t>>(std::move(triangles));
  return system;
}

class HeatMap : public testing::Test {
 protected:
  HeatMap() {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    folder_ = fs::temp_directory_path() / (std::string("qelm-heat-map-") + test->name());
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  ~HeatMap() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  std::string base(const std::string& name = "mesh") const { return (folder_ / name).string(); }

  /// Runs the export and returns what it wrote on the standard error stream, with
  /// plain line ends: the capture is read back in text mode.
  static std::string write(const MeshSystem* system, const Field& field, const std::string& path) {
    testing::internal::CaptureStderr();
    wobj(system, field.data(), path.c_str());
    return testing::internal::GetCapturedStderr();
  }

  void expectPlain(const MeshSystem& system, const Field& field) {
    EXPECT_EQ(write(&system, field, base()), "");
    std::ostringstream obj, mtl;
    plainObj(obj, system, field, base());
    plainMtl(mtl);
    EXPECT_EQ(bytesOf(base() + ".obj"), withLineEnds(obj.str()));
    EXPECT_EQ(bytesOf(base() + ".mtl"), withLineEnds(mtl.str()));
  }

  fs::path folder_;
};

MeshSystem triangle() { return meshOnly({0, 0, 0, 1, 0, 0.5, 0, -2, 1e-7}, {0, 1, 2}); }

TEST_F(HeatMap, OfATriangleHasExactlyTheseLines) {
  const MeshSystem system = triangle();
  EXPECT_EQ(write(&system, {2, 4, 3}, base()), "");
  EXPECT_EQ(bytesOf(base() + ".obj"), withLineEnds("mtllib " + base() +
                                                   ".mtl\n"
                                                   "usemtl Heat\n"
                                                   "v 0 0 0\n"
                                                   "v 1 0 0.5\n"
                                                   "v 0 -2 1e-07\n"
                                                   "vt 1 0.5\n"
                                                   "vt 0 0.5\n"
                                                   "vt 0.5 0.5\n"
                                                   "f 1/1 2/2 3/3\n"));
}

TEST_F(HeatMap, HasTheseEightMaterialLinesWithTheirTrailingBlanks) {
  const MeshSystem system = triangle();
  write(&system, {2, 4, 3}, base());
  EXPECT_EQ(bytesOf(base() + ".mtl"),
            withLineEnds("newmtl Heat \nKd 1 1 1             \nNs 96.0784\t\t\t \n"
                         "d 1\t\t\t\t\t \nillum 1\t\t\t\t \nKa 0 0 0\t\t\t \n"
                         "Ks 1 1 1\t\t\t \nmap_Kd viridis.PNG\n"));
}

TEST_F(HeatMap, ReadsTheStoredMeshInSystemOrder) {
  const Mesh mesh = torusMesh(10, 7).withTagged({3, 33});
  const MeshHandle system = construct(mesh);
  expectPlain(*system, mesh.sample([](Point p) { return p.x * p.y - p.z; }));
}

TEST_F(HeatMap, OfEqualValuesWritesTheQuotientOfZerosAsTheStreamDoes) {
  expectPlain(triangle(), {7, 7, 7});
  EXPECT_NE(bytesOf(base() + ".obj").find("nan 0.5"), std::string::npos);
}

TEST_F(HeatMap, OfFieldsWithNaNAndInfinityIsThatOfThePlainForm) {
  expectPlain(triangle(), {kNaN, 1, 2});
  expectPlain(triangle(), {1, kNaN, 2});
  expectPlain(triangle(), {1, 2, kNaN});
  expectPlain(triangle(), {-kNaN, -kNaN, kNaN});
  expectPlain(triangle(), {1, kInfinity, 2});
  expectPlain(triangle(), {-kInfinity, kInfinity, 2});
  expectPlain(meshOnly({kNaN, -kNaN, kInfinity, -kInfinity, -0.0, 0, 1, 2, 3}, {2, 1, 0}),
              {1, 2, 3});
}

TEST_F(HeatMap, WithoutTrianglesHasNoFace) {
  const MeshSystem system = meshOnly({1, 2, 3, 4, 5, 6}, {});
  expectPlain(system, {1, 2});
  EXPECT_EQ(bytesOf(base() + ".obj").find("f "), std::string::npos);
}

TEST_F(HeatMap, WithoutVerticesHasNoTextureCoordinateAndReadsNoField) {
  const MeshSystem system = meshOnly({}, {});
  testing::internal::CaptureStderr();
  wobj(&system, nullptr, base().c_str());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(bytesOf(base() + ".obj"), withLineEnds("mtllib " + base() + ".mtl\nusemtl Heat\n"));
}

TEST_F(HeatMap, OfANullHandleTouchesNothing) {
  EXPECT_EQ(write(nullptr, {1}, base()), "");
  EXPECT_TRUE(fs::is_empty(folder_));
  testing::internal::CaptureStderr();
  wobj(nullptr, nullptr, nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(HeatMap, ReplacesLongerFiles) {
  const MeshSystem system = triangle();
  for (const char* extension : {".obj", ".mtl"}) {
    std::ofstream(base() + extension) << std::string(100000, 'x');
  }
  expectPlain(system, {1, 2, 3});
}

TEST_F(HeatMap, KeepsDotsAndBlanksOfThePath) {
  const MeshSystem system = triangle();
  const std::string odd = base("with blank.v2.obj");
  EXPECT_EQ(write(&system, {1, 2, 3}, odd), "");
  EXPECT_EQ(bytesOf(odd + ".obj").rfind("mtllib " + odd + ".mtl" + kLineEnd, 0), 0U);
  EXPECT_TRUE(fs::exists(odd + ".mtl"));
}

TEST_F(HeatMap, ThatCannotOpenTheObjSaysSoAndLeavesTheMtlAlone) {
  const MeshSystem system = triangle();
  const std::string path = base("missing") + "/mesh";
  EXPECT_EQ(write(&system, {1, 2, 3}, path), "couldn't open file " + path + " for writing.\n");
  EXPECT_TRUE(fs::is_empty(folder_));

  fs::create_directory(base() + ".obj");  // the OBJ's name is a folder's
  EXPECT_EQ(write(&system, {1, 2, 3}, base()), "couldn't open file " + base() + " for writing.\n");
  EXPECT_FALSE(fs::exists(base() + ".mtl"));
}

TEST_F(HeatMap, ThatCannotOpenTheMtlSaysSoAndKeepsTheObj) {
  const MeshSystem system = triangle();
  fs::create_directory(base() + ".mtl");
  EXPECT_EQ(write(&system, {1, 2, 3}, base()), "couldn't open file " + base() + " for writing.\n");
  std::ostringstream obj;
  plainObj(obj, system, {1, 2, 3}, base());
  EXPECT_EQ(bytesOf(base() + ".obj"), withLineEnds(obj.str()));
}

TEST_F(HeatMap, BelowAFileInsteadOfAFolderSaysSo) {
  std::ofstream(base("file")) << "kept";
  const MeshSystem system = triangle();
  const std::string path = base("file") + "/mesh";
  EXPECT_EQ(write(&system, {1, 2, 3}, path), "couldn't open file " + path + " for writing.\n");
  EXPECT_EQ(bytesOf(base("file")), "kept");
}

TEST_F(HeatMap, IsClosedBeforeTheMaterialIsOpened) {
  // Two names of one file: the second opening empties it, and what the first stream
  // still held would come after that.
  std::ofstream(base() + ".obj") << "old";
  fs::create_hard_link(base() + ".obj", base() + ".mtl");
  const MeshSystem system = triangle();
  EXPECT_EQ(write(&system, {1, 2, 3}, base()), "");
  std::ostringstream mtl;
  plainMtl(mtl);
  EXPECT_EQ(bytesOf(base() + ".obj"), withLineEnds(mtl.str()));
}

TEST_F(HeatMap, WithoutPermissionSaysSoAndKeepsTheFile) {
  std::ofstream(base() + ".obj") << "kept";
  const MeshSystem system = triangle();
  std::string message;
  {
    const NoPermission guard(base() + ".obj");
    message = write(&system, {1, 2, 3}, base());
  }
  EXPECT_EQ(message, "couldn't open file " + base() + " for writing.\n");
  EXPECT_EQ(bytesOf(base() + ".obj"), "kept");
  EXPECT_FALSE(fs::exists(base() + ".mtl"));
}

TEST_F(HeatMap, CanBeWrittenOnManyThreadsAtOnce) {
  const Mesh mesh = torusMesh(30, 20).withTagged({0});
  const MeshHandle system = construct(mesh);
  const Field field = mesh.sample([](Point p) { return p.x - p.z; });
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&, path = base(std::to_string(thread))] {
      for (int round = 0; round < 5; ++round) wobj(system.get(), field.data(), path.c_str());
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int thread = 0; thread < 4; ++thread) {
    const std::string path = base(std::to_string(thread));
    std::ostringstream obj;
    plainObj(obj, *system, field, path);
    EXPECT_EQ(bytesOf(path + ".obj"), withLineEnds(obj.str()));
  }
}

TEST_F(HeatMap, UsesAPointWhateverTheGlobalLocale) {
  struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const MeshSystem system = meshOnly({1234567.5, 0.25, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 2});
  const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));
  write(&system, {1, 2, 3}, base());
  std::locale::global(before);
  EXPECT_NE(bytesOf(base() + ".obj").find("v 1.23457e+06 0.25 0" + kLineEnd), std::string::npos);
}

TEST_F(HeatMap, LargerThanABlockIsThatOfThePlainForm) {
  const Mesh mesh = openSurface(70, 60, 5).withBoundaryTagged();
  expectPlain(*construct(mesh), mesh.sample([](Point p) { return p.x - p.y; }));
}

TEST_F(HeatMap, TakesPathsLongerThanABlockForWhatTheyAre) {
  const MeshSystem system = triangle();
  const std::string path = base() + std::string(200000, 'p');
  // Not EXPECT_EQ: nobody wants to read this twice.
  EXPECT_TRUE(write(&system, {1, 2, 3}, path) == "couldn't open file " + path + " for writing.\n");
}

#ifdef _WIN32
// A letter beyond ASCII that differs between Western ANSI and OEM code pages. It is
// appended as a byte: fs::path would encode it anew.
const std::string kLetter = "\x82";

std::wstring widened(const std::string& text, UINT codePage) {
  std::wstring wide(text.size(), L'\0');
  const int length = static_cast<int>(text.size());
  const int count = MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), length);
  wide.resize(static_cast<std::size_t>(count));
  return wide;
}

TEST_F(HeatMap, WidensThePathFromTheAnsiCodePage) {
  const std::string path = base() + kLetter;
  const MeshSystem system = triangle();
  EXPECT_EQ(write(&system, {1, 2, 3}, path), "");
  EXPECT_TRUE(fs::exists(folder_ / (L"mesh" + widened(kLetter, CP_ACP) + L".obj")));
  EXPECT_TRUE(fs::exists(folder_ / (L"mesh" + widened(kLetter, CP_ACP) + L".mtl")));
  EXPECT_EQ(bytesOf(folder_ / (L"mesh" + widened(kLetter, CP_ACP) + L".obj"))
                .rfind("mtllib " + path + ".mtl\r\n", 0),
            0U);
  std::FILE* file = std::fopen((path + ".obj").c_str(), "r");
  ASSERT_NE(file, nullptr) << "the platform's own narrow call names the same file";
  std::fclose(file);
}

TEST_F(HeatMap, WidensThePathFromTheOemCodePageOnceThatIsChosen) {
  const std::wstring ansi = widened(kLetter, CP_ACP);
  const std::wstring oem = widened(kLetter, CP_OEMCP);
  if (ansi == oem) GTEST_SKIP() << "one code page for both";
  const MeshSystem system = triangle();
  SetFileApisToOEM();
  const std::string message = write(&system, {1, 2, 3}, base() + kLetter);
  SetFileApisToANSI();
  EXPECT_EQ(message, "");
  EXPECT_TRUE(fs::exists(folder_ / (L"mesh" + oem + L".obj")));
  EXPECT_FALSE(fs::exists(folder_ / (L"mesh" + ansi + L".obj")));
}

TEST_F(HeatMap, RestrictsNoSharingWithWhoHasTheFileOpen) {
  std::ofstream(base() + ".obj") << "old";
  const HANDLE reader =
      CreateFileA((base() + ".obj").c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                  nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(reader, INVALID_HANDLE_VALUE);
  const MeshSystem system = triangle();
  EXPECT_EQ(write(&system, {1, 2, 3}, base()), "");
  CloseHandle(reader);
}
#else
TEST_F(HeatMap, TakesThePathsBytesAsTheyAre) {
  const MeshSystem system = triangle();
  EXPECT_EQ(write(&system, {1, 2, 3}, base("caf\xe9\xff")), "");
  EXPECT_TRUE(fs::exists(base("caf\xe9\xff") + ".obj"));
}

TEST_F(HeatMap, OnAFullDeviceReportsNothing) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
  fs::create_symlink("/dev/full", base() + ".obj");
  const MeshSystem system = triangle();
  EXPECT_EQ(write(&system, {1, 2, 3}, base()), "");
  EXPECT_TRUE(fs::exists(base() + ".mtl")) << "and goes on to the material";
}
#endif

TEST_F(HeatMap, OfRandomMeshesIsThatOfThePlainForm) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int round = 0; round < 100; ++round) {
    const int n = uniformInt(random, 1, 60);
    std::vector<double> vertices;
    Field field;
    std::vector<std::int32_t> triangles;
    for (int i = 0; i < 3 * n; ++i) {
      vertices.push_back(uniform(random, -1, 1) * std::pow(10.0, uniformInt(random, -12, 12)));
    }
    for (int i = 0; i < n; ++i) field.push_back(uniformInt(random, -9, 9) / 7.0);
    for (int i = 3 * uniformInt(random, 0, 2 * n); i > 0; --i) {
      triangles.push_back(uniformInt(random, 0, n - 1));
    }
    expectPlain(meshOnly(vertices, triangles), field);
  }
}

}  // namespace
}  // namespace qelm::test

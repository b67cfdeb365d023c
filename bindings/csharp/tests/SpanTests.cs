#if NET6_0_OR_GREATER
using System;
using System.IO;
using System.Linq;
using NUnit.Framework;

namespace Qelm.Tests
{
    /// <summary>Spans are views of larger arrays here, so that a wrong start or length would show.</summary>
    [TestFixture]
    public class SpanTests
    {
        private TestMesh mesh;
        private double[] values;

        [SetUp]
        public void SetUp()
        {
            mesh = TestMesh.Grid(6, 5);
            values = mesh.Sample((x, y, z) => x * y + x);
        }

        [Test]
        public void EveryOverloadGivesWhatItsArrayTwinGives()
        {
            using (MeshSystem system = mesh.Build())
            using (MeshSystem fromSpans = MeshSystem.Build(View(mesh.Vertices), View(mesh.Triangles), View(mesh.Tags)))
            {
                var result = new double[mesh.VertexCount];
                fromSpans.SolveInto(View(values), new Span<double>(result));
                Check.SameBits(result, system.Solve(values));
                fromSpans.SolveInto(View(values), View(values), new Span<double>(result));
                Check.SameBits(result, system.Solve(values, values));
                CollectionAssert.AreEqual(system.Curves(values, 2.5, 7).SelectMany(curve => curve.Points),
                    fromSpans.Curves(View(values), View(new[] { 2.5, 7 })).SelectMany(curve => curve.Points));
            }
            using (MeshSystem system = MeshSystem.BuildRobust(mesh.Vertices, mesh.Triangles, mesh.Tags))
            using (MeshSystem fromSpans = MeshSystem.BuildRobust(View(mesh.Vertices), View(mesh.Triangles),
                View(mesh.Tags)))
            {
                Check.SameBits(fromSpans.Solve(values), system.Solve(values));
            }
            Assert.AreEqual(Mesh.CheckRobust(mesh.Vertices, mesh.Triangles, mesh.Tags).Flips,
                Mesh.CheckRobust(View(mesh.Vertices), View(mesh.Triangles), View(mesh.Tags)).Flips);
            CollectionAssert.AreEqual(Mesh.Weld(mesh.Vertices, mesh.Triangles, 1.1).Vertices,
                Mesh.Weld(View(mesh.Vertices), View(mesh.Triangles), 1.1).Vertices);
        }

        [Test]
        public void HeatMapsAreTheSameFiles()
        {
            string path = Path.Combine(Path.GetTempPath(), "qelm-" + Guid.NewGuid().ToString("N"));
            using (MeshSystem system = mesh.Build())
            {
                system.WriteHeatMap(values, path);
                string text = File.ReadAllText(path + ".obj");
                system.WriteHeatMap(View(values), path);
                Assert.AreEqual(text, File.ReadAllText(path + ".obj"));
            }
            File.Delete(path + ".obj");
            File.Delete(path + ".mtl");
        }

        [Test]
        public void WrongLengthsAreRefused()
        {
            using (MeshSystem system = mesh.Build())
            {
                Check.Refuses<ArgumentException>("values", "must be 30",
                    () => system.SolveInto(ReadOnlySpan<double>.Empty, new Span<double>(values)));
                Check.Refuses<ArgumentException>("load", "must be 30", () => system.SolveInto(
                    new ReadOnlySpan<double>(values), ReadOnlySpan<double>.Empty, new Span<double>(values)));
                Check.Refuses<ArgumentException>("result", "must be 30",
                    () => system.SolveInto(new ReadOnlySpan<double>(values), Span<double>.Empty));
                Check.Refuses<ArgumentException>("field", "must be 30",
                    () => system.WriteHeatMap(ReadOnlySpan<double>.Empty, "unused"));
                Check.Refuses<ArgumentException>("field", "must be 30",
                    () => system.Curves(ReadOnlySpan<double>.Empty, ReadOnlySpan<double>.Empty));
            }
            Check.Refuses<ArgumentException>("vertices", "no vertex", () => MeshSystem.Build(
                ReadOnlySpan<double>.Empty, ReadOnlySpan<int>.Empty, ReadOnlySpan<int>.Empty));
        }

        private static ReadOnlySpan<T> View<T>(T[] array)
        {
            var larger = new T[array.Length + 5];
            array.CopyTo(larger, 2);
            return new ReadOnlySpan<T>(larger, 2, array.Length);
        }
    }
}
#endif

using System;
using System.IO;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class PredictionTests
    {
        private static readonly int[] NoIndices = new int[0];

        /// <summary>Twice as many triangles between any vertices, each of which is in one.</summary>
        private static TestMesh RandomTriangles(int count)
        {
            var random = new Random(1);
            var mesh = new TestMesh
            {
                Vertices = new double[3 * count], Triangles = new int[6 * count], Tags = new int[count]
            };
            for (int i = 0; i < mesh.Vertices.Length; ++i)
            {
                mesh.Vertices[i] = random.NextDouble();
            }
            for (int t = 0; t < 2 * count; ++t)
            {
                int a = t % count;
                mesh.Triangles[3 * t] = a;
                mesh.Triangles[3 * t + 1] = (a + random.Next(1, count / 2)) % count;
                mesh.Triangles[3 * t + 2] = (a + random.Next(count / 2, count)) % count;
            }
            mesh.Tags[0] = 1;
            return mesh;
        }

        [TestCase("memory.max", "memory.current", "memory.stat", "inactive_file")]
        [TestCase("memory/memory.limit_in_bytes", "memory/memory.usage_in_bytes", "memory/memory.stat",
            "total_inactive_file")]
        public void AContainerSaysWhatItsLimitLeaves(string limit, string used, string statistics, string cache)
        {
            string folder = Path.Combine(Path.GetTempPath(), Path.GetRandomFileName());
            Directory.CreateDirectory(Path.Combine(folder, "memory"));
            try
            {
                Assert.IsNull(MachineMemory.LeftToGroup(folder));
                File.WriteAllText(Path.Combine(folder, used), "60000000\n");
                File.WriteAllText(Path.Combine(folder, statistics), "anon 5\n" + cache + " 10000000\nactive_file 7\n");
                File.WriteAllText(Path.Combine(folder, limit), "100000000\n");
                Assert.AreEqual(50000000, MachineMemory.LeftToGroup(folder));
                File.WriteAllText(Path.Combine(folder, limit), "50000000\n");
                Assert.AreEqual(0, MachineMemory.LeftToGroup(folder));
                File.WriteAllText(Path.Combine(folder, limit), "max\n");
                Assert.IsNull(MachineMemory.LeftToGroup(folder));
            }
            finally
            {
                Directory.Delete(folder, true);
            }
        }

        [Test]
        public void CountsTheFactor()
        {
            // The three free corners of two triangles, two of which share no edge.
            Prediction square = Mesh.Predict(
                new double[] { 0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0 }, new[] { 0, 1, 2, 0, 2, 3 }, new[] { 1, 0, 0, 0 });
            Assert.AreEqual(2, square.FactorEntries);
            Assert.AreEqual(2, square.Multiplications);
            Assert.Greater(square.PeakBytes, 0);
            Assert.LessOrEqual(square.SystemBytes, square.PeakBytes);
            StringAssert.StartsWith("factor of 2 entries, 2E+0 multiplications, 0 GB at the peak", square.ToString());
        }

        [Test]
        public void WhatCannotBeBuiltIsNamed()
        {
            TestMesh mesh = RandomTriangles(10);
            mesh.Triangles[4] = 10;
            var error = Assert.Throws<ArgumentException>(() => Mesh.Predict(mesh.Vertices, mesh.Triangles, mesh.Tags));
            StringAssert.Contains("triangle 1", error.Message);
            Assert.Throws<ArgumentException>(() => Mesh.Predict(new double[0], NoIndices, NoIndices));
            Assert.Throws<ArgumentNullException>(() => Mesh.Predict(null, NoIndices, NoIndices));
        }

        [Test]
        public void AFactorThatCannotBeIndexedIsRefusedBeforeItIsMade()
        {
            TestMesh mesh = RandomTriangles(130000);
            Prediction predicted = Mesh.Predict(mesh.Vertices, mesh.Triangles, mesh.Tags);
            Assert.Greater(predicted.FactorEntries, int.MaxValue);
            var error = Assert.Throws<InsufficientMemoryException>(
                () => MeshSystem.Build(mesh.Vertices, mesh.Triangles, mesh.Tags, false));
            StringAssert.Contains(
                "would need " + predicted.FactorEntries + " entries, more than the library can index", error.Message);
        }

        [Test]
        public void TheRefusalSaysWhatIsFree()
        {
            Prediction predicted = Mesh.Predict(
                new double[] { 0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0 }, new[] { 0, 1, 2, 0, 2, 3 }, new[] { 1, 0, 0, 0 });
            StringAssert.Contains("would take 0 GB of memory, and 1.5 GB are free; its factor has 2 entries",
                predicted.Refusal(1500000000));
        }
    }
}

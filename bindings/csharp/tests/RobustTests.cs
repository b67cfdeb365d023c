using System;
using System.Linq;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class RobustTests
    {
        private TestMesh mesh;
        private double[] values;

        /// <summary>The free vertex 0 sees vertex 1, which is distant, past two at flat angles.</summary>
        [SetUp]
        public void SetUp()
        {
            mesh = new TestMesh
            {
                Vertices = new[] { 0, 0, 0, 10, 0, 0, 1, 0.2, 0, -1, 0, 0, 1, -0.2, 0 },
                Triangles = new[] { 0, 1, 2, 0, 2, 3, 0, 3, 4, 0, 4, 1 },
                Tags = new[] { 0, 1, 1, 1, 1 }
            };
            values = new double[] { 9, 1, 0, 0, 0 };
        }

        [Test]
        public void TheFieldStaysInRangeWhereThePlainOneDoesNot()
        {
            using (MeshSystem plain = mesh.Build())
            using (MeshSystem robust = MeshSystem.BuildRobust(mesh.Vertices, mesh.Triangles, mesh.Tags))
            {
                Assert.Less(plain.Solve(values)[0], -0.01);
                Assert.GreaterOrEqual(robust.Solve(values)[0], 0);
                Assert.LessOrEqual(robust.Solve(values)[0], 1);
                using (MeshSystem copy = robust.Duplicate())
                {
                    Check.SameBits(robust.Solve(values), copy.Solve(values));
                }
            }
        }

        [Test]
        public void ATriangleWithoutAreaBuildsRobustlyOnly()
        {
            mesh.Vertices[7] = mesh.Vertices[13] = 0;  // all on one line
            var error = Assert.Throws<ArgumentException>(() => mesh.Build());
            StringAssert.Contains("BuildRobust", error.Message);
            using (MeshSystem system = MeshSystem.BuildRobust(mesh.Vertices, mesh.Triangles, mesh.Tags))
            {
                double value = system.Solve(values)[0];
                Assert.IsTrue(value >= 0 && value <= 1);
            }
        }

        [Test]
        public void WhatStaysWrongIsRefusedByName()
        {
            mesh.Tags = new int[5];
            var error = Assert.Throws<ArgumentException>(
                () => MeshSystem.BuildRobust(mesh.Vertices, mesh.Triangles, mesh.Tags));
            Assert.AreEqual("tags", error.ParamName);
            MeshSystem.BuildRobust(mesh.Vertices, mesh.Triangles, mesh.Tags, mustSolve: false).Dispose();
            Assert.Throws<ArgumentNullException>(() => MeshSystem.BuildRobust(null, mesh.Triangles, mesh.Tags));
            mesh.Triangles[1] = 7;
            error = Assert.Throws<ArgumentException>(
                () => MeshSystem.BuildRobust(mesh.Vertices, mesh.Triangles, mesh.Tags));
            StringAssert.Contains("vertex 7 is not in 0 .. 4", error.Message);
        }

        [Test]
        public void AGoodMeshKeepsItsPlainField()
        {
            TestMesh grid = TestMesh.Grid(6, 5);
            double[] field = grid.Sample((x, y, z) => x - 2 * y);
            using (MeshSystem plain = grid.Build())
            using (MeshSystem robust = MeshSystem.BuildRobust(grid.Vertices, grid.Triangles, grid.Tags))
            {
                Check.SameBits(plain.Solve(field), robust.Solve(field));
            }
            Assert.IsFalse(Mesh.CheckRobust(grid.Vertices, grid.Triangles, grid.Tags).IsChanged);
        }

        [Test]
        public void TheReportSaysWhatIsDone()
        {
            RobustReport report = Mesh.CheckRobust(mesh.Vertices, mesh.Triangles, mesh.Tags);
            Assert.AreEqual(QelmStatus.Ok, report.Status);
            Assert.IsTrue(report.IsChanged);
            Assert.AreEqual(1, report.Sheets, "what has one triangle only is prescribed");
            Assert.AreEqual(1, report.NotDelaunayEdges);
            Assert.AreEqual(1, report.Flips);
            Assert.AreEqual(0, report.FlatTriangles);
            mesh.Triangles[2] = 99;
            report = Mesh.CheckRobust(mesh.Vertices, mesh.Triangles, mesh.Tags);
            Assert.AreEqual(QelmStatus.IndexOutOfRange, report.Status);
            Assert.IsFalse(report.IsChanged);
        }
    }
}

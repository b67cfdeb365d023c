using System;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class WeldTests
    {
        /// <summary>The square as a soup: six vertices, each triangle with its own.</summary>
        private static readonly double[] Soup =
        {
            0, 0, 0, 1, 0, 0, 1, 1, 0,
            0, 0, 0.001, 1, 1, 0, 0, 1, 0
        };

        private static readonly int[] SoupTriangles = { 0, 1, 2, 3, 4, 5 };

        [Test]
        public void ASoupBecomesAMeshThatCanBeBuilt()
        {
            WeldedMesh welded = Mesh.Weld(Soup, SoupTriangles, 0.01);
            Assert.AreEqual(4, welded.VertexCount);
            Assert.AreEqual(2, welded.TriangleCount);
            CollectionAssert.AreEqual(new double[] { 0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0 }, welded.Vertices);
            CollectionAssert.AreEqual(new[] { 0, 1, 2, 0, 2, 3 }, welded.Triangles);
            CollectionAssert.AreEqual(new[] { 0, 1, 2, 0, 2, 3 }, welded.VertexMap);
            using (MeshSystem system = MeshSystem.Build(welded.Vertices, welded.Triangles, new[] { 1, 0, 1, 0 }))
            {
                Assert.AreEqual(4, system.VertexCount);
            }
        }

        [Test]
        public void ADistanceOfExactlyTheToleranceStaysApart()
        {
            // 0.5 and its square are exact.
            var vertices = new double[] { 0, 0, 0, 0.5, 0, 0 };
            Assert.AreEqual(2, Mesh.Weld(vertices, new int[0], 0.5).VertexCount);
            Assert.AreEqual(1, Mesh.Weld(vertices, new int[0], 0.5000001).VertexCount);
        }

        [Test]
        public void AToleranceOfZeroMergesNothing()
        {
            WeldedMesh welded = Mesh.Weld(new double[6], new int[0], 0);
            Assert.AreEqual(2, welded.VertexCount);
            CollectionAssert.AreEqual(new[] { 0, 1 }, welded.VertexMap);
        }

        [Test]
        public void CollapsedAndRepeatedTrianglesAreDropped()
        {
            WeldedMesh welded = Mesh.Weld(Soup, new[] { 0, 1, 2, 2, 1, 3, 0, 3, 5 }, 0.01);
            CollectionAssert.AreEqual(new[] { 0, 1, 2 }, welded.Triangles);
        }

        [Test]
        public void AnEmptyMeshStaysEmpty()
        {
            WeldedMesh welded = Mesh.Weld(new double[0], new int[0], 1);
            Assert.AreEqual(0, welded.VertexCount);
            Assert.AreEqual(0, welded.TriangleCount);
            Assert.AreEqual(0, welded.VertexMap.Length);
        }

        [Test]
        public void WrongArgumentsAreRefusedByName()
        {
            Check.Refuses<ArgumentNullException>("vertices", "", () => Mesh.Weld(null, SoupTriangles, 1));
            Check.Refuses<ArgumentNullException>("triangles", "", () => Mesh.Weld(Soup, null, 1));
            Check.Refuses<ArgumentException>("vertices", "17", () => Mesh.Weld(new double[17], SoupTriangles, 1));
            Check.Refuses<ArgumentException>("triangles", "4", () => Mesh.Weld(Soup, new int[4], 1));
            Check.Refuses<ArgumentException>("triangles", "vertex 6 is not in 0 .. 5",
                () => Mesh.Weld(Soup, new[] { 0, 1, 6 }, 1));
            Check.Refuses<ArgumentException>("triangles", "vertex 0 is not in",
                () => Mesh.Weld(new double[0], new[] { 0, 0, 0 }, 1));
            Check.Refuses<ArgumentException>("vertices", "vertex 0: x is NaN",
                () => Mesh.Weld(new[] { double.NaN, 0, 0 }, new int[0], 1));
        }

        [TestCase(-1)]
        [TestCase(-double.Epsilon)]
        [TestCase(double.NaN)]
        [TestCase(double.PositiveInfinity)]
        public void AToleranceThatIsNoDistanceIsRefused(double tolerance)
        {
            Check.Refuses<ArgumentException>("tolerance", "at least 0",
                () => Mesh.Weld(Soup, SoupTriangles, tolerance));
        }
    }
}

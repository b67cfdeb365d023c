using System;
using System.Linq;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class GradientTests
    {
        private static double[] Linear(TestMesh mesh, double x, double y)
        {
            return Enumerable.Range(0, mesh.VertexCount)
                .Select(i => x * mesh.Vertices[3 * i] + y * mesh.Vertices[3 * i + 1]).ToArray();
        }

        [Test]
        public void ALinearFieldHasItsOwn()
        {
            TestMesh mesh = TestMesh.Grid(9, 7);
            using (MeshSystem system = mesh.Build())
            {
                Gradient gradient = system.Gradient(Linear(mesh, 3, -2));
                Assert.AreEqual(mesh.Triangles.Length / 3, gradient.OfTriangles.Count);
                Assert.AreEqual(mesh.VertexCount, gradient.OfVertices.Count);
                foreach (Point3 vector in gradient.OfTriangles.Concat(gradient.OfVertices))
                {
                    Assert.AreEqual(3, vector.X, 1e-12);
                    Assert.AreEqual(-2, vector.Y, 1e-12);
                    Assert.AreEqual(0, vector.Z);
                }
            }
        }

        [Test]
        public void VerticesComeInInputOrder()
        {
            TestMesh mesh = TestMesh.Grid(5, 2);
            double[] field = Enumerable.Range(0, 10).Select(i => (double)(i % 5 * (i % 5))).ToArray();
            using (MeshSystem system = mesh.Build())
            {
                // x squared: the differences between neighbours, and their means inside.
                Gradient gradient = system.Gradient(field);
                Assert.AreEqual(1, gradient.OfVertices[0].X, 1e-12);
                Assert.AreEqual(7, gradient.OfVertices[4].X, 1e-12);
                Assert.AreEqual(new[] { 1.0, 3, 5, 7 }, gradient.OfTriangles.Select(v => Math.Round(v.X, 9)).Distinct());
            }
        }

        [Test]
        public void TrianglesWithoutAreaHaveNoneAndDoNotCount()
        {
            var mesh = new TestMesh
            {
                Vertices = new double[] { 0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0.5, 0, 0 },
                Triangles = new[] { 0, 1, 2, 0, 2, 3, 0, 4, 1 },
                Tags = new[] { 1, 1, 1, 1, 1 }
            };
            using (MeshSystem system = mesh.Build(false))
            {
                Gradient gradient = system.Gradient(new double[] { 0, 3, 5, 2, 99 });
                Assert.IsNaN(gradient.OfTriangles[2].X);
                Assert.IsNaN(gradient.OfVertices[4].Y);
                Assert.AreEqual(3, gradient.OfVertices[0].X, 1e-12);
                Assert.AreEqual(2, gradient.OfVertices[0].Y, 1e-12);
            }
        }

        [Test]
        public void WrongFieldsAreRefused()
        {
            using (MeshSystem system = TestMesh.Square().Build())
            {
                Assert.Throws<ArgumentNullException>(() => system.Gradient(null));
                Assert.Throws<ArgumentException>(() => system.Gradient(new double[3]));
                system.Dispose();
                Assert.Throws<ObjectDisposedException>(() => system.Gradient(new double[4]));
            }
        }
    }
}

using System;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class BuildTests
    {
        private TestMesh mesh;

        [SetUp]
        public void SetUp()
        {
            mesh = TestMesh.Square();
        }

        [Test]
        public void ASquareBuilds()
        {
            using (MeshSystem system = mesh.Build())
            {
                Assert.AreEqual(4, system.VertexCount);
                Assert.AreEqual(2, system.TriangleCount);
                Assert.AreEqual(2, system.FixedCount);
                Assert.AreEqual(FactorisationInfo.Success, system.FactorisationInfo);
                Assert.AreEqual(1, system.UseCount);
            }
        }

        [Test]
        public void OnlyTagsOneToThreeMeanPrescribed()
        {
            mesh.Tags = new[] { -1, 1, 2, 3 };
            using (MeshSystem system = mesh.Build())
            {
                Assert.AreEqual(3, system.FixedCount);
            }
            mesh.Tags = new[] { 4, 1, 0, int.MinValue };
            using (MeshSystem system = mesh.Build())
            {
                Assert.AreEqual(1, system.FixedCount);
            }
        }

        [Test]
        public void NullArraysAreRefused()
        {
            Refuses<ArgumentNullException>("vertices", "", () => MeshSystem.Build(null, mesh.Triangles, mesh.Tags));
            Refuses<ArgumentNullException>("triangles", "", () => MeshSystem.Build(mesh.Vertices, null, mesh.Tags));
            Refuses<ArgumentNullException>("tags", "", () => MeshSystem.Build(mesh.Vertices, mesh.Triangles, null));
        }

        [Test]
        public void EmptyMeshesAreRefused()
        {
            Refuses<ArgumentException>("vertices", "no vertex",
                () => MeshSystem.Build(new double[0], mesh.Triangles, new int[0]));
            Refuses<ArgumentException>("triangles", "no triangle",
                () => MeshSystem.Build(mesh.Vertices, new int[0], mesh.Tags));
        }

        [Test]
        public void LengthsThatAreNoTriplesAreRefused()
        {
            Array.Resize(ref mesh.Vertices, 11);
            Refuses<ArgumentException>("vertices", "11", () => mesh.Build());
            mesh = TestMesh.Square();
            Array.Resize(ref mesh.Triangles, 5);
            Refuses<ArgumentException>("triangles", "5", () => mesh.Build());
        }

        [Test]
        public void AWrongNumberOfTagsIsRefused()
        {
            Array.Resize(ref mesh.Tags, 3);
            Refuses<ArgumentException>("tags", "is 3, must be 4", () => mesh.Build());
            Array.Resize(ref mesh.Tags, 5);
            Refuses<ArgumentException>("tags", "is 5, must be 4", () => mesh.Build());
        }

        [TestCase(double.NaN, "NaN")]
        [TestCase(double.PositiveInfinity, "Infinity")]
        [TestCase(double.NegativeInfinity, "-Infinity")]
        public void CoordinatesThatAreNotFiniteAreRefusedByName(double number, string name)
        {
            mesh.Vertices[7] = number;
            Refuses<ArgumentException>("vertices", "vertex 2: y is " + name, () => mesh.Build());
        }

        [TestCase(4)]
        [TestCase(-1)]
        [TestCase(int.MaxValue)]
        [TestCase(int.MinValue)]
        public void IndicesOutOfRangeAreRefusedByName(int index)
        {
            mesh.Triangles[5] = index;
            Refuses<ArgumentException>("triangles",
                "triangle 1 (0, 2, " + index + "): vertex " + index + " is not in 0 .. 3", () => mesh.Build());
        }

        [TestCase(0)]
        [TestCase(1)]
        [TestCase(2)]
        public void ATriangleThatRepeatsAVertexIsRefusedByName(int corner)
        {
            mesh.Triangles[3 + corner] = mesh.Triangles[3 + (corner + 1) % 3];
            Refuses<ArgumentException>("triangles", "triangle 1 (", () => mesh.Build());
            Refuses<ArgumentException>("triangles", "names a vertex twice", () => mesh.Build());
        }

        [Test]
        public void AVertexInNoTriangleIsRefusedByName()
        {
            Array.Resize(ref mesh.Triangles, 3);
            Refuses<ArgumentException>("triangles", "vertex 3 lies in no triangle", () => mesh.Build());
        }

        [Test]
        public void AMeshWithoutTagsIsRefusedUnlessSolvingIsNotWanted()
        {
            mesh.Tags = new int[4];
            Refuses<ArgumentException>("tags", "the part of the mesh with vertex 0", () => mesh.Build());
            using (MeshSystem system = mesh.Build(mustSolve: false))
            {
                Assert.AreEqual(0, system.FixedCount);
                var error = Assert.Throws<SingularSystemException>(() => system.Solve(new double[4]));
                StringAssert.Contains("vertex 0", error.Message);
                Assert.AreEqual(system.FactorisationInfo, error.Info);
                using (MeshSystem copy = system.Duplicate())
                {
                    Assert.Throws<SingularSystemException>(() => copy.Solve(new double[4]));
                }
            }
        }

        [Test]
        public void APartWithoutTagsIsRefusedByName()
        {
            var two = new TestMesh
            {
                Vertices = new double[] { 9, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 9, 1, 0, 8, 0, 0 },
                Triangles = new[] { 1, 2, 3, 5, 0, 4 },
                Tags = new[] { 0, 1, 0, 0, 0, 0 }
            };
            Refuses<ArgumentException>("tags", "the part of the mesh with vertex 0", () => two.Build());
            two.Tags[4] = 3;
            two.Build().Dispose();
        }

        [Test]
        public void ATriangleWithoutAreaIsRefusedUnlessSolvingIsNotWanted()
        {
            mesh.Vertices[6] = 0.5;
            mesh.Vertices[7] = 0.5;
            mesh.Vertices[9] = 1;
            Refuses<ArgumentException>("triangles", "triangle 1 (0, 2, 3): its area is not a positive number",
                () => mesh.Build());
            using (MeshSystem system = mesh.Build(mustSolve: false))
            {
                Assert.Throws<SingularSystemException>(() => system.Solve(new double[4]));
            }
        }

        [Test]
        public void AFactorisationThatFailsIsSeenAtOnce()
        {
            // A part of three free vertices: its stiffness is singular, and here the last pivot is exactly 0.
            mesh = new TestMesh
            {
                Vertices = new double[] { 0, 0, 0, 1, 0, 0, 0, 1, 0 },
                Triangles = new[] { 0, 1, 2 },
                Tags = new int[3]
            };
            using (MeshSystem system = mesh.Build(mustSolve: false))
            {
                Assert.AreEqual(FactorisationInfo.NumericalIssue, system.FactorisationInfo);
            }
        }

        [Test]
        public void TheCallersArraysAreCopied()
        {
            using (MeshSystem system = mesh.Build())
            {
                double[] before = system.Solve(new double[] { 0, 9, 1, 9 });
                Array.Clear(mesh.Vertices, 0, mesh.Vertices.Length);
                Array.Clear(mesh.Triangles, 0, mesh.Triangles.Length);
                Array.Clear(mesh.Tags, 0, mesh.Tags.Length);
                Check.SameBits(system.Solve(new double[] { 0, 9, 1, 9 }), before);
            }
        }

        [TestCase(1)]
        [TestCase(2)]
        [TestCase(23)]
        [TestCase(24)]
        [TestCase(25)]
        public void StatusCodesBecomeExceptionsThatKeepTheCode(int code)
        {
            var error = Assert.Throws<QelmException>(() => QelmException.ThrowUnlessOk(code));
            Assert.AreEqual(code, (int)error.Status);
            StringAssert.Contains(code.ToString(), error.Message);
            Assert.IsTrue(Enum.IsDefined(typeof(QelmStatus), error.Status));
        }

        [Test]
        public void TheStatusOfSuccessThrowsNothing()
        {
            QelmException.ThrowUnlessOk(0);
        }

        private static void Refuses<T>(string argument, string words, TestDelegate call)
            where T : ArgumentException
        {
            Check.Refuses<T>(argument, words, call);
        }
    }
}

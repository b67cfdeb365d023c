using System;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class OrderTests
    {
        /// <summary>Six vertices of which 1, 3 and 4 are tagged: system order 1, 3, 4, 5, 2, 0.</summary>
        private static TestMesh Strip()
        {
            return new TestMesh
            {
                Vertices = new double[] { 0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0, 0, 2, 0, 1, 2, 0 },
                Triangles = new[] { 0, 1, 2, 1, 3, 2, 2, 3, 4, 3, 5, 4 },
                Tags = new[] { 0, 1, 5, 3, 2, 0 }
            };
        }

        [Test]
        public void SystemOrderHasTaggedVerticesFirstAndFreeOnesFromTheBack()
        {
            using (MeshSystem system = Strip().Build())
            {
                CollectionAssert.AreEqual(new double[] { 1, 3, 4, 5, 2, 0 },
                    system.ToSystemOrder(new double[] { 0, 1, 2, 3, 4, 5 }));
            }
        }

        [Test]
        public void InputOrderIsTheReverse()
        {
            using (MeshSystem system = Strip().Build())
            {
                var field = new double[] { 10, 11, 12, 13, 14, 15 };
                CollectionAssert.AreEqual(field, system.ToInputOrder(system.ToSystemOrder(field)));
                CollectionAssert.AreEqual(new double[] { 15, 10, 14, 11, 12, 13 }, system.ToInputOrder(field));
            }
        }

        [Test]
        public void TheNativeLibraryHasTheSameOrder()
        {
            // The binding makes the order from the tags; here it is held against the coordinates the library keeps.
            TestMesh mesh = TestMesh.Roof();
            using (MeshSystem system = mesh.Build())
            {
                double[] stored = system.SystemVertices();
                for (int axis = 0; axis < 3; ++axis)
                {
                    var input = new double[mesh.VertexCount];
                    var kept = new double[mesh.VertexCount];
                    for (int i = 0; i < input.Length; ++i)
                    {
                        input[i] = mesh.Vertices[3 * i + axis];
                        kept[i] = stored[3 * i + axis];
                    }
                    Check.SameBits(system.ToSystemOrder(input), kept);
                }
            }
        }

        [Test]
        public void TrianglesComeInInputOrderWithSystemNumbers()
        {
            using (MeshSystem system = Strip().Build())
            {
                // Places of the input vertices 0 .. 5 in system order.
                int[] place = { 5, 0, 4, 1, 2, 3 };
                CollectionAssert.AreEqual(Array.ConvertAll(Strip().Triangles, i => place[i]), system.SystemTriangles());
            }
        }

        [Test]
        public void WrongArraysAreRefused()
        {
            using (MeshSystem system = Strip().Build())
            {
                Check.Refuses<ArgumentNullException>("field", "", () => system.ToSystemOrder(null));
                Check.Refuses<ArgumentNullException>("systemField", "", () => system.ToInputOrder(null));
                Check.Refuses<ArgumentException>("field", "is 5, must be 6", () => system.ToSystemOrder(new double[5]));
                Check.Refuses<ArgumentException>("systemField", "is 7, must be 6",
                    () => system.ToInputOrder(new double[7]));
            }
        }
    }
}

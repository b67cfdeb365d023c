using System;
using NUnit.Framework;

namespace Qelm.Tests
{
    /// <summary>
    /// A mesh whose packed arrays, read column by column as the export reads them, hold one interesting triangle.
    /// </summary>
    [TestFixture]
    public class IsolineSegmentTests
    {
        // Column by column: vertex 0 is (0, 2, 7), vertex 1 (1, 3, 8), vertex 2 (5, 4, 9), vertex 3 (6, 6, 6).
        private static readonly double[] Vertices = { 0, 1, 5, 6, 2, 3, 4, 6, 7, 8, 9, 6 };

        // Column by column: row 0 is (0, 1, 2); vertex 2 is in no other row.
        private static readonly int[] Triangles = { 0, 1, 3, 0, 1, 3, 0, 1, 2, 0, 1, 3 };

        // Flat but for vertex 2, so that only row 0 can be cut.
        private static readonly double[] Field = { 0, 0, 1, 0 };

        private MeshSystem system;

        [SetUp]
        public void SetUp()
        {
            // All vertices are tagged, so that system order is input order.
            system = MeshSystem.Build(Vertices, Triangles, new[] { 1, 1, 1, 1 }, mustSolve: false);
        }

        [TearDown]
        public void TearDown()
        {
            system.Dispose();
        }

        [Test]
        public void ALevelBetweenGivesOneSegment()
        {
            SegmentTable table = system.IsolineSegments(Field, 0.25);
            Assert.AreEqual(1, table.Count);
            Assert.AreEqual(2, table.PointCount);
            // From edge 1 (1 to 2) a quarter along, to edge 2 (2 to 0) three quarters along.
            Assert.AreEqual(new Point3(2, 3.25, 8.25), table.Start(0));
            Assert.AreEqual(new Point3(1.25, 2.5, 7.5), table.End(0));
        }

        [Test]
        public void LevelsComeInTheCallersOrder()
        {
            SegmentTable table = system.IsolineSegments(Field, 0.5, 0.25);
            Assert.AreEqual(2, table.Count);
            Assert.AreEqual(3.5, table.Start(0).Y);
            Assert.AreEqual(3.25, table.Start(1).Y);
        }

        [Test]
        public void AnEdgeOnTheLevelGivesPointsWithNan()
        {
            SegmentTable table = system.IsolineSegments(Field, 0);
            Assert.Greater(table.Count, 0);
            bool nan = false;
            for (int k = 0; k < table.Count; ++k)
            {
                nan |= double.IsNaN(table.Start(k).X) || double.IsNaN(table.End(k).X);
            }
            Assert.IsTrue(nan);
        }

        [Test]
        public void TheFieldIsTakenInInputOrder()
        {
            // The last vertex alone is tagged: system order is input order reversed. The stored coordinates read as
            // (8, 6, 3), (9, 7, 0), (6, 6, 1), (4, 2, 5), and row 0 of the triangles as (3, 2, 1). Input vertex 2 is
            // system vertex 1, the third corner: level 0.5 is half way along the edges (2, 1) and (1, 3).
            using (MeshSystem other = MeshSystem.Build(Vertices, Triangles, new[] { 0, 0, 0, 1 }, mustSolve: false))
            {
                SegmentTable table = other.IsolineSegments(Field, 0.5);
                Assert.AreEqual(1, table.Count);
                Assert.AreEqual(new Point3(7.5, 6.5, 0.5), table.Start(0));
                Assert.AreEqual(new Point3(6.5, 4.5, 2.5), table.End(0));
            }
        }

        [Test]
        public void NoLevelsAndNoCrossingsGiveNoSegments()
        {
            Assert.AreEqual(0, system.IsolineSegments(Field).Count);
            SegmentTable table = system.IsolineSegments(Field, 2);
            Assert.AreEqual(0, table.Count);
            Assert.AreEqual(0, table.PointCount);
            Assert.Throws<ArgumentOutOfRangeException>(() => table.Start(0));
        }

        [Test]
        public void ManyCutsDoNotGrowTheProcess()
        {
            // 500 levels give tables of at least 28 kB.
            var levels = new double[500];
            for (int k = 0; k < levels.Length; ++k)
            {
                levels[k] = (k + 1.0) / (levels.Length + 1);
            }
            Memory.AssertNoGrowth(3000, () => Assert.AreEqual(500, system.IsolineSegments(Field, levels).Count));
        }

        [Test]
        public void WrongArgumentsAreRefused()
        {
            Check.Refuses<ArgumentNullException>("field", "", () => system.IsolineSegments(null, 1));
            Check.Refuses<ArgumentNullException>("levels", "", () => system.IsolineSegments(new double[4], null));
            Check.Refuses<ArgumentException>("field", "must be 4", () => system.IsolineSegments(new double[3], 1));
            SegmentTable table = system.IsolineSegments(Field, 0.5);
            Check.Refuses<ArgumentOutOfRangeException>("segment", "", () => table.Start(1));
            Check.Refuses<ArgumentOutOfRangeException>("segment", "", () => table.End(-1));
        }
    }
}

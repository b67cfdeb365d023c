using System;
using System.Collections.Generic;
using System.Linq;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class CurveTests
    {
        // Coordinates below 10 from one interpolation each.
        private const double Tolerance = 1e-14;

        [Test]
        public void ALevelOfHeightIsOneStraightOpenCurve()
        {
            TestMesh mesh = TestMesh.Grid(5, 4);
            using (MeshSystem system = mesh.Build())
            {
                IReadOnlyList<Curve> curves = system.Curves(mesh.Sample((x, y, z) => x), 1.5);
                Assert.AreEqual(1, curves.Count);
                Curve curve = curves[0];
                Assert.IsFalse(curve.IsClosed);
                Assert.AreEqual(1.5, curve.Level);
                Assert.AreEqual(0, curve.LevelIndex);
                Assert.AreEqual(3, curve.Length, Tolerance);
                Assert.IsTrue(curve.Points.All(point => point.X == 1.5 && point.Z == 0));
                // Higher values at the left: towards smaller y.
                Assert.AreEqual(3, curve.Points[0].Y);
                Assert.AreEqual(0, curve.Points[curve.Points.Count - 1].Y);
            }
        }

        [Test]
        public void ALevelRoundAPeakIsOneClosedCurve()
        {
            TestMesh mesh = TestMesh.Grid(3, 3);
            using (MeshSystem system = mesh.Build())
            {
                var field = new double[] { 0, 0, 0, 0, 1, 0, 0, 0, 0 };
                Curve curve = system.Curves(field, 0.5).Single();
                Assert.IsTrue(curve.IsClosed);
                Assert.AreNotEqual(curve.Points[0], curve.Points[curve.Points.Count - 1], "not repeated");
                // Half way from the middle to its six neighbours, two of which are along the diagonal.
                Assert.AreEqual(6, curve.Points.Count);
                double byHand = 2 * Math.Sqrt(0.5) + 4 * 0.5;
                Assert.AreEqual(byHand, curve.Length, Tolerance);
            }
        }

        [Test]
        public void CurvesComeByLevelInTheCallersOrderAndKnowIt()
        {
            TestMesh mesh = TestMesh.Grid(5, 4);
            var levels = new[] { 2.5, 0.5, 9, 1.5 };
            using (MeshSystem system = mesh.Build())
            {
                IReadOnlyList<Curve> curves = system.Curves(mesh.Sample((x, y, z) => x), levels);
                CollectionAssert.AreEqual(new[] { 0, 1, 3 }, curves.Select(curve => curve.LevelIndex));
                CollectionAssert.AreEqual(new[] { 2.5, 0.5, 1.5 }, curves.Select(curve => curve.Level));
            }
        }

        [Test]
        public void TheFieldIsTakenInInputOrder()
        {
            // With the rim tagged, system order is another; a field by x would give anything but x = 2.5.
            TestMesh mesh = TestMesh.Grid(6, 6);
            using (MeshSystem system = mesh.Build())
            {
                double[] field = system.Solve(mesh.Sample((x, y, z) => x));
                Curve curve = system.Curves(field, 2.5).Single();
                Assert.IsTrue(curve.Points.All(point => Math.Abs(point.X - 2.5) < 1e-12));
            }
        }

        [Test]
        public void NanMakesHoles()
        {
            TestMesh mesh = TestMesh.Grid(3, 3);
            var field = new[] { 0, 1, 2, 0, double.NaN, 2, 0, 1, 2 };
            using (MeshSystem system = mesh.Build())
            {
                IReadOnlyList<Curve> curves = system.Curves(field, 0.5);
                Assert.IsTrue(curves.All(curve => !curve.IsClosed));
                Assert.Less(curves.Sum(curve => curve.Length), 2);
            }
        }

        [Test]
        public void NoLevelsAndNoCrossingsGiveNoCurves()
        {
            using (MeshSystem system = TestMesh.Square().Build())
            {
                var field = new double[] { 0, 1, 2, 3 };
                CollectionAssert.IsEmpty(system.Curves(field));
                CollectionAssert.IsEmpty(system.Curves(field, -1, 4));
            }
        }

        [Test]
        public void CurvesNeedNoSolvableSystem()
        {
            TestMesh mesh = TestMesh.Square();
            mesh.Tags = new int[4];
            using (MeshSystem system = mesh.Build(mustSolve: false))
            {
                Assert.AreEqual(1, system.Curves(new double[] { 0, 1, 1, 0 }, 0.5).Count);
            }
        }

        [Test]
        public void WrongArgumentsAreRefused()
        {
            using (MeshSystem system = TestMesh.Square().Build())
            {
                Check.Refuses<ArgumentNullException>("field", "", () => system.Curves(null, 1));
                Check.Refuses<ArgumentNullException>("levels", "", () => system.Curves(new double[4], null));
                Check.Refuses<ArgumentException>("field", "must be 4", () => system.Curves(new double[5], 1));
                Check.Refuses<ArgumentException>("levels", "level 1: value is NaN",
                    () => system.Curves(new double[4], 1, double.NaN));
            }
        }

        [Test]
        public void ManyCutsDoNotGrowTheProcess()
        {
            // A cut of this grid leaves a record of at least 30 kB.
            TestMesh mesh = TestMesh.Grid(40, 40);
            double[] field = mesh.Sample((x, y, z) => Math.Sin(x) * Math.Sin(y));
            using (MeshSystem system = mesh.Build())
            {
                Memory.AssertNoGrowth(3000, () => system.Curves(field, -0.5, 0.1, 0.5));
            }
        }
    }
}

using System;
using System.Collections.Generic;
using System.Threading;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class SolveTests
    {
        // Solves on these small grids are exact to a few units in the last place of values below 100.
        private const double Tolerance = 1e-12;

        [Test]
        public void TheMiddleOfASquareIsTheMeanOfItsCorners()
        {
            using (MeshSystem system = TestMesh.Square().Build())
            {
                Check.Close(system.Solve(new double[] { 0, 77, 1, 77 }), new[] { 0, 0.5, 1, 0.5 }, Tolerance);
            }
        }

        [Test]
        public void ALinearFieldIsReproducedOnAFlatGrid()
        {
            TestMesh mesh = TestMesh.Grid(9, 7);
            double[] exact = mesh.Sample((x, y, z) => 2 * x - 3 * y);
            using (MeshSystem system = mesh.Build())
            {
                Check.Close(system.Solve(mesh.AtTagged(exact, double.NaN)), exact, Tolerance);
            }
        }

        [Test]
        public void AQuadraticFieldIsReproducedUnderItsLoad()
        {
            // laplace(x^2) = 2, and each hat function of the unit grid has integral 1; K u + load = 0.
            TestMesh mesh = TestMesh.Grid(9, 7);
            double[] exact = mesh.Sample((x, y, z) => x * x);
            double[] load = mesh.AtFree(mesh.Sample((x, y, z) => 2), double.NaN);
            using (MeshSystem system = mesh.Build())
            {
                Check.Close(system.Solve(mesh.AtTagged(exact, double.NaN), load), exact, Tolerance);
            }
        }

        [Test]
        public void PrescribedValuesComeBackBitForBit()
        {
            TestMesh mesh = TestMesh.Grid(6, 6);
            double[] values = mesh.Sample((x, y, z) => Math.Sin(x) / 3 + Math.Exp(y));
            using (MeshSystem system = mesh.Build())
            {
                double[] field = system.Solve(values);
                Check.SameBits(mesh.AtTagged(field, 0), mesh.AtTagged(values, 0));
            }
        }

        [Test]
        public void SolvingIntoTheSameArrayGivesTheSame()
        {
            TestMesh mesh = TestMesh.Grid(6, 6);
            double[] values = mesh.Sample((x, y, z) => x * y + 1);
            double[] load = mesh.Sample((x, y, z) => x - y);
            using (MeshSystem system = mesh.Build())
            {
                double[] plain = system.Solve(values);
                double[] loaded = system.Solve(values, load);
                var inPlace = (double[])values.Clone();
                system.SolveInto(inPlace, inPlace);
                Check.SameBits(inPlace, plain);
                system.SolveInto(values, load, load);
                Check.SameBits(load, loaded);
            }
        }

        [Test]
        public void WrongLengthsAreRefused()
        {
            using (MeshSystem system = TestMesh.Square().Build())
            {
                var good = new double[4];
                foreach (double[] bad in new[] { new double[0], new double[3], new double[5] })
                {
                    Check.Refuses<ArgumentException>("values", "must be 4", () => system.Solve(bad));
                    Check.Refuses<ArgumentException>("values", "must be 4", () => system.Solve(bad, good));
                    Check.Refuses<ArgumentException>("load", "must be 4", () => system.Solve(good, bad));
                    Check.Refuses<ArgumentException>("result", "must be 4", () => system.SolveInto(good, bad));
                    Check.Refuses<ArgumentException>("result", "must be 4", () => system.SolveInto(good, good, bad));
                }
            }
        }

        [Test]
        public void NullArraysAreRefused()
        {
            using (MeshSystem system = TestMesh.Square().Build())
            {
                var good = new double[4];
                Check.Refuses<ArgumentNullException>("values", "", () => system.Solve(null));
                Check.Refuses<ArgumentNullException>("load", "", () => system.Solve(good, null));
                Check.Refuses<ArgumentNullException>("result", "", () => system.SolveInto(good, null));
                Check.Refuses<ArgumentNullException>("result", "", () => system.SolveInto(good, good, null));
            }
        }

        [TestCase(double.NaN)]
        [TestCase(double.PositiveInfinity)]
        public void NumbersThatAreNotFiniteAreRefusedWhereTheyAreRead(double bad)
        {
            using (MeshSystem system = TestMesh.Square().Build())
            {
                Check.Refuses<ArgumentException>("values", "vertex 2: value is",
                    () => system.Solve(new[] { 0, 0, bad, 0 }));
                Check.Refuses<ArgumentException>("load", "vertex 3: value is",
                    () => system.Solve(new double[4], new[] { bad, 0, bad, bad }));
            }
        }

        [Test]
        public void AFieldThatOverflowsIsReportedByVertex()
        {
            // The rim is finite, its harmonic field is not: sums of 1e308 overflow in the solve.
            TestMesh mesh = TestMesh.Grid(4, 4);
            using (MeshSystem system = mesh.Build())
            {
                var error = Assert.Throws<SingularSystemException>(
                    () => system.Solve(mesh.Sample((x, y, z) => 1.7e308)));
                StringAssert.Contains("at vertex 5", error.Message);
                Assert.AreEqual(FactorisationInfo.Success, error.Info);
            }
        }

        [Test]
        public void ManyThreadsSolveOnOneSystemWithTheSameBits()
        {
            const int ThreadCount = 8;
            const int SolveCount = 50;
            TestMesh mesh = TestMesh.Grid(30, 30);
            using (MeshSystem system = mesh.Build())
            {
                var expected = new double[ThreadCount][];
                for (int t = 0; t < ThreadCount; ++t)
                {
                    expected[t] = system.Solve(Values(mesh, t));
                }
                var failures = new List<Exception>();
                var threads = new Thread[ThreadCount];
                for (int t = 0; t < ThreadCount; ++t)
                {
                    int seed = t;
                    threads[t] = new Thread(() => Collect(failures, () =>
                    {
                        for (int k = 0; k < SolveCount; ++k)
                        {
                            Check.SameBits(system.Solve(Values(mesh, seed)), expected[seed]);
                        }
                    }));
                    threads[t].Start();
                }
                foreach (Thread thread in threads)
                {
                    thread.Join();
                }
                CollectionAssert.IsEmpty(failures);
            }
        }

        private static double[] Values(TestMesh mesh, int seed)
        {
            return mesh.Sample((x, y, z) => Math.Sin(seed + x) + Math.Cos(seed * y));
        }

        private static void Collect(List<Exception> failures, Action action)
        {
            try
            {
                action();
            }
            catch (Exception error)
            {
                lock (failures)
                {
                    failures.Add(error);
                }
            }
        }
    }
}

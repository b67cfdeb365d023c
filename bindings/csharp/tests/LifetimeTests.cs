using System;
using System.Collections.Generic;
using System.IO;
using System.Threading;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class LifetimeTests
    {
        [Test]
        public void DisposingTwiceIsHarmless()
        {
            MeshSystem system = TestMesh.Square().Build();
            MeshSystem copy = system.Duplicate();
            system.Dispose();
            system.Dispose();
            Assert.AreEqual(1, copy.UseCount, "the second disposal freed nothing");
            copy.Dispose();
        }

        [Test]
        public void EveryMemberThatNeedsTheNativeSystemSaysThatItIsDisposed()
        {
            MeshSystem system = TestMesh.Square().Build();
            system.Dispose();
            var four = new double[] { 1, 2, 3, 4 };
            foreach (TestDelegate call in new TestDelegate[]
            {
                () => Ignore(system.UseCount),
                () => system.Duplicate(),
                () => system.Solve(four),
                () => system.Solve(four, four),
                () => system.SolveMany(new[] { four }),
                () => system.SolveMany(new[] { four }, new[] { four }),
                () => system.SolveInto(four, four),
                () => system.SolveInto(four, four, four),
                () => system.SystemVertices(),
                () => system.SystemTriangles(),
                () => system.Curves(four, 2.5),
                () => system.IsolineSegments(four, 0.5),
                () => system.WriteHeatMap(four, Path.Combine(Path.GetTempPath(), "qelm-never-written"))
            })
            {
                Assert.Throws<ObjectDisposedException>(call);
            }
            Assert.IsFalse(File.Exists(Path.Combine(Path.GetTempPath(), "qelm-never-written.obj")));
        }

        [Test]
        public void WhatIsKeptInManagedMemoryOutlivesDisposal()
        {
            MeshSystem system = TestMesh.Square().Build();
            system.Dispose();
            Assert.AreEqual(4, system.VertexCount);
            Assert.AreEqual(2, system.FixedCount);
            Assert.AreEqual(FactorisationInfo.Success, system.FactorisationInfo);
            Assert.AreEqual(4, system.ToSystemOrder(new double[4]).Length);
        }

        [Test]
        public void ADuplicateSharesTheFactorisationAndLivesOnItsOwn()
        {
            var values = new double[] { 0, 0, 1, 0 };
            MeshSystem system = TestMesh.Square().Build();
            double[] field = system.Solve(values);
            MeshSystem copy = system.Duplicate();
            Assert.AreEqual(2, system.UseCount);
            Assert.AreEqual(2, copy.UseCount);
            system.Dispose();
            Assert.AreEqual(1, copy.UseCount);
            Assert.AreEqual(4, copy.VertexCount);
            Assert.AreEqual(2, copy.TriangleCount);
            Assert.AreEqual(2, copy.FixedCount);
            Check.SameBits(copy.Solve(values), field);
            copy.Dispose();
        }

        [Test]
        public void FinalisersFreeForgottenDuplicatesExactlyOnce()
        {
            const int Forgotten = 50;
            using (MeshSystem system = TestMesh.Square().Build())
            using (MeshSystem kept = system.Duplicate())
            {
                // On a thread of their own, so that no register or stack slot keeps one alive.
                var thread = new Thread(() => Forget(system, Forgotten));
                thread.Start();
                thread.Join();
                WaitForFinalisers(() => system.UseCount == 2);
                // Freeing one of them twice would bring this below 2, or end the process.
                Assert.AreEqual(2, system.UseCount);
                Assert.AreEqual(2, kept.UseCount);
            }
        }

        [Test]
        public void ADisposedSystemIsNotFinalisedAgain()
        {
            using (MeshSystem system = TestMesh.Square().Build())
            {
                var thread = new Thread(() =>
                {
                    for (int k = 0; k < 50; ++k)
                    {
                        system.Duplicate().Dispose();
                    }
                });
                thread.Start();
                thread.Join();
                WaitForFinalisers(() => false);
                Assert.AreEqual(1, system.UseCount);
            }
        }

        [Test]
        public void DisposingWhileOtherThreadsSolveLetsThemFinish()
        {
            TestMesh mesh = TestMesh.Grid(40, 40);
            double[] values = mesh.Sample((x, y, z) => x);
            for (int round = 0; round < 20; ++round)
            {
                MeshSystem system = mesh.Build();
                var failures = new List<Exception>();
                var started = new CountdownEvent(4);
                var threads = new List<Thread>();
                for (int t = 0; t < 4; ++t)
                {
                    var thread = new Thread(() => SolveUntilDisposed(system, values, started, failures));
                    thread.Start();
                    threads.Add(thread);
                }
                started.Wait();
                system.Dispose();
                threads.ForEach(thread => thread.Join());
                CollectionAssert.IsEmpty(failures);
            }
        }

        [Test]
        public void TenThousandCyclesDoNotGrowTheProcess()
        {
            // One system of this grid holds 55 kB (measured): leaking every tenth would show as 55 MB.
            TestMesh mesh = TestMesh.Grid(15, 15);
            double[] values = mesh.Sample((x, y, z) => x);
            Memory.AssertNoGrowth(10000, () =>
            {
                using (MeshSystem system = mesh.Build())
                using (MeshSystem copy = system.Duplicate())
                {
                    copy.Solve(values);
                }
            });
        }

        private static void Forget(MeshSystem system, int count)
        {
            var forgotten = new List<MeshSystem>();
            for (int k = 0; k < count; ++k)
            {
                forgotten.Add(system.Duplicate());
            }
            Assert.AreEqual(2 + count, system.UseCount);
        }

        private static void WaitForFinalisers(Func<bool> done)
        {
            for (int k = 0; k < 50 && !done(); ++k)
            {
                GC.Collect();
                GC.WaitForPendingFinalizers();
                Thread.Sleep(1);
            }
        }

        private static void SolveUntilDisposed(MeshSystem system, double[] values, CountdownEvent started,
            List<Exception> failures)
        {
            try
            {
                system.Solve(values);
                started.Signal();
                while (true)
                {
                    system.Solve(values);
                }
            }
            catch (ObjectDisposedException)
            {
            }
            catch (Exception error)
            {
                lock (failures)
                {
                    failures.Add(error);
                }
            }
        }

        private static void Ignore(int number)
        {
        }
    }
}

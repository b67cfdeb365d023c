using System;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class MeshCheckTests
    {
        private static MeshReport Report(TestMesh mesh)
        {
            return Mesh.Check(mesh.Vertices, mesh.Triangles, mesh.Tags);
        }

        [Test]
        public void AGoodMeshIsSound()
        {
            MeshReport report = Report(TestMesh.Grid(5, 4));
            Assert.IsTrue(report.IsSound);
            Assert.AreEqual(QelmStatus.Ok, report.Status);
            Assert.AreEqual("success", report.Description);
            Assert.AreEqual(1, report.Part.Count);
            Assert.AreEqual(0, report.Part.First);
            Assert.AreEqual(1, report.BoundaryLoop.Count);
            Assert.AreEqual(14, report.TaggedVertex.Count);
            Assert.AreEqual("none", report.IndexOutOfRange.ToString());
            Assert.AreEqual(-1, report.IndexOutOfRange.First);
            Assert.Greater(report.WorstQuality, 0.05);
            Assert.GreaterOrEqual(report.WorstTriangle, 0);
        }

        [Test]
        public void EachDefectHasItsOwnStatusAndFinding()
        {
            Expect(QelmStatus.IndexOutOfRange, r => r.IndexOutOfRange, 1, m => m.Triangles[4] = int.MinValue);
            Expect(QelmStatus.RepeatedVertex, r => r.RepeatedVertex, 1, m => m.Triangles[4] = 0);
            Expect(QelmStatus.UnusedVertex, r => r.UnusedVertex, 3, m => m.Triangles[5] = 1);
            Expect(QelmStatus.NotFinite, r => r.NotFinite, 1, m => m.Vertices[4] = double.NegativeInfinity);
            Expect(QelmStatus.NearZeroArea, r => r.NearZeroArea, 0, m => m.Vertices[3] = m.Vertices[4] = 0.5);
            Expect(QelmStatus.UntaggedPart, r => r.UntaggedPart, 0, m => m.Tags[0] = m.Tags[2] = 4);
            Expect(QelmStatus.SizeOutOfRange, r => r.SizeOutOfRange, 0, m =>
            {
                for (int i = 0; i < m.Vertices.Length; ++i)
                {
                    m.Vertices[i] *= 1e70;
                }
            });
        }

        private static void Expect(QelmStatus status, Func<MeshReport, MeshFinding> finding, int first,
            Action<TestMesh> spoil)
        {
            TestMesh mesh = TestMesh.Square();
            spoil(mesh);
            MeshReport report = Report(mesh);
            Assert.IsFalse(report.IsSound, status.ToString());
            Assert.AreEqual(status, report.Status);
            Assert.AreEqual(first, finding(report).First, status.ToString());
            Assert.GreaterOrEqual(finding(report).Count, 1);
            StringAssert.EndsWith(", first " + first, finding(report).ToString());
        }

        [Test]
        public void InformationKeepsAMeshSound()
        {
            var vertices = new double[] { 0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0.5, 0.5, 1, 0.5, 0.5, 1 };
            var triangles = new[] { 0, 1, 2, 2, 0, 3, 0, 2, 4, 0, 5, 2, 1, 2, 0, 0, 1, 3 };
            MeshReport report = Mesh.Check(vertices, triangles, new[] { 1, 0, 0, 0, 0, 0 });
            Assert.IsTrue(report.IsSound, report.Description);
            Assert.AreEqual("1, first 4", report.RepeatedTriangle.ToString());
            Assert.AreEqual("1, first 5", report.CoincidentVertex.ToString());
            Assert.AreEqual(0, report.CrowdedEdge.First);
            Assert.AreEqual(1, report.TaggedVertex.Count);
        }

        [Test]
        public void WhatIsSoundCanBeBuiltAndTheRestCannot()
        {
            TestMesh mesh = TestMesh.Square();
            Assert.IsTrue(Report(mesh).IsSound);
            mesh.Build().Dispose();
            mesh.Tags = new int[4];
            Assert.IsFalse(Report(mesh).IsSound);
            Assert.Throws<ArgumentException>(() => mesh.Build());
        }

        // What Check calls sound, Build takes, and the other way round: from a good triangle to none.
        [Test]
        public void CheckAndBuildJudgeAlike()
        {
            var expected = new[]
            {
                new { Height = 1.0, Grade = MeshGrade.Fine },
                new { Height = 1e-4, Grade = MeshGrade.Fine },
                new { Height = 1e-6, Grade = MeshGrade.Fine },
                new { Height = 1e-9, Grade = MeshGrade.Fine },
                new { Height = 1e-13, Grade = MeshGrade.Fine },
                new { Height = 1e-15, Grade = MeshGrade.WillNotWork },
                new { Height = 0.0, Grade = MeshGrade.WillNotWork }
            };
            foreach (var each in expected)
            {
                var vertices = new double[] { 0, 0, 0, 1, 0, 0, 0.5, each.Height, 0, 0.5, -1, 0 };
                ExpectAlike(vertices, each.Grade, "height " + each.Height);
            }
            foreach (double unit in new[] { 1e-70, 1e70 })
            {
                ExpectAlike(new[] { 0, 0, 0, unit, 0, 0, unit, unit, 0, 0, -unit, 0 }, MeshGrade.WillNotWork,
                    "unit " + unit);
            }
        }

        private static void ExpectAlike(double[] vertices, MeshGrade grade, string what)
        {
            var triangles = new[] { 0, 1, 2, 1, 0, 3 };
            var tags = new[] { 1, 0, 0, 0 };
            MeshReport report = Mesh.Check(vertices, triangles, tags);
            Assert.AreEqual(grade, report.Grade, what);
            Assert.AreEqual(grade != MeshGrade.WillNotWork, report.IsSound, what);
            if (report.IsSound)
            {
                MeshSystem.Build(vertices, triangles, tags).Dispose();
            }
            else
            {
                Assert.Throws<ArgumentException>(() => MeshSystem.Build(vertices, triangles, tags), what);
            }
        }

        // Far enough out that a single digit of a field is left, or none.
        [Test]
        public void WhereRoundingLeavesNothingCheckAndBuildRefuse()
        {
            int refused = 0;
            foreach (double distance in new[] { 1e12, 1e13, 1e14, 3e14, 1e15 })
            {
                TestMesh mesh = TestMesh.Grid(7, 6);
                for (int i = 0; i < mesh.Vertices.Length; i += 3)
                {
                    mesh.Vertices[i] = mesh.Vertices[i] * 1.1 + 0.1 * Math.Sin(i) + distance;
                    mesh.Vertices[i + 1] = mesh.Vertices[i + 1] * 0.9 + 0.7 * distance;
                }
                MeshReport report = Report(mesh);
                if (report.IsSound)
                {
                    mesh.Build().Dispose();
                    continue;
                }
                ++refused;
                StringAssert.StartsWith("will not work: ", report.ToString());
                Assert.AreEqual(0, report.Error);
                Assert.Catch<Exception>(() => mesh.Build());
            }
            Assert.Greater(refused, 0);
        }

        [Test]
        public void ReportsMeshesAndCurvesSayWhatTheyAre()
        {
            TestMesh mesh = TestMesh.Square();
            Assert.AreEqual("fine", Report(mesh).ToString());
            Assert.AreEqual("the plain matrix is good",
                Mesh.CheckRobust(mesh.Vertices, mesh.Triangles, mesh.Tags).ToString());
            Assert.AreEqual("4 of 4 vertices, 2 triangles", Mesh.Weld(mesh.Vertices, mesh.Triangles, 1e-9).ToString());
            using (MeshSystem system = mesh.Build())
            {
                Curve curve = system.Curves(new double[] { 2, 4, 4, 2 }, new[] { 3.5 })[0];
                Assert.AreEqual("level 3.5: open, " + curve.Points.Count + " points", curve.ToString());
            }
            mesh.Tags = new int[4];
            Assert.AreEqual("will not work: " + NativeLibrary.StatusText((int)Report(mesh).Status),
                Report(mesh).ToString());
        }

        [Test]
        public void TheErrorIsMeasured()
        {
            TestMesh mesh = TestMesh.Grid(7, 6);
            using (MeshSystem system = mesh.Build())
            {
                Assert.Less(system.MeasureError(), 1e-12);
            }
            for (int i = 0; i < mesh.Vertices.Length; i += 3)
            {
                // Not on a lattice, where all differences would be exact.
                mesh.Vertices[i] = mesh.Vertices[i] * 1.1 + 0.1 * Math.Sin(i) + 1e11;
                mesh.Vertices[i + 1] = mesh.Vertices[i + 1] * 0.9 + 0.7e11;
            }
            using (MeshSystem system = mesh.Build())
            {
                MeshReport report = Report(mesh);
                Assert.AreEqual(MeshGrade.WorksWithError, report.Grade);
                double error = system.MeasureError();
                Assert.AreEqual(error, report.Error);
                StringAssert.IsMatch("^will work, but with an error of about [1-9]e-0[0-9] of the largest value: "
                    + "triangle [0-9]+ is too thin, or too small for its distance from the origin$", report.ToString());
                Assert.Greater(error, 1e-8);
                Assert.Less(error, 1e-2);
            }
        }

        [Test]
        public void AnEmptyMeshIsRefusedByItsStatus()
        {
            MeshReport report = Mesh.Check(new double[0], new int[0], new int[0]);
            Assert.AreEqual(QelmStatus.BadCountOrHandle, report.Status);
            Assert.AreEqual(double.PositiveInfinity, report.WorstQuality);
            Assert.AreEqual(-1, report.WorstTriangle);
            Assert.AreEqual(QelmStatus.UnusedVertex, Mesh.Check(new double[3], new int[0], new int[1]).Status);
        }

        [Test]
        public void WrongLengthsAreRefusedByName()
        {
            var vertices = new double[9];
            var triangles = new[] { 0, 1, 2 };
            var tags = new int[3];
            Check.Refuses<ArgumentNullException>("vertices", "", () => Mesh.Check(null, triangles, tags));
            Check.Refuses<ArgumentNullException>("triangles", "", () => Mesh.Check(vertices, null, tags));
            Check.Refuses<ArgumentNullException>("tags", "", () => Mesh.Check(vertices, triangles, null));
            Check.Refuses<ArgumentException>("vertices", "8", () => Mesh.Check(new double[8], triangles, tags));
            Check.Refuses<ArgumentException>("triangles", "4", () => Mesh.Check(vertices, new int[4], tags));
            Check.Refuses<ArgumentException>("tags", "must be 3", () => Mesh.Check(vertices, triangles, new int[2]));
        }

        [Test]
        public void TextsAndVersionAreTheLibrarys()
        {
            Assert.AreEqual("a triangle names the same vertex twice", NativeLibrary.StatusText(23));
            Assert.AreEqual("unknown status code", NativeLibrary.StatusText(-5));
            Version version = typeof(MeshSystem).Assembly.GetName().Version;
            Assert.AreEqual(version.ToString(3), NativeLibrary.Version);
        }
    }
}

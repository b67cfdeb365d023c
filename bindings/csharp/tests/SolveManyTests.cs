using System;
using System.Linq;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class SolveManyTests
    {
        private TestMesh mesh;
        private MeshSystem system;

        [SetUp]
        public void SetUp()
        {
            mesh = TestMesh.Grid(9, 8);
            system = mesh.Build();
        }

        [TearDown]
        public void TearDown()
        {
            system.Dispose();
        }

        [TestCase(0)]
        [TestCase(1)]
        [TestCase(7)]
        [TestCase(64)]
        [TestCase(65)]
        [TestCase(200)]
        public void EachFieldIsThatOfASingleSolve(int count)
        {
            double[][] values = Fields(count, double.NaN);
            double[][] fields = system.SolveMany(values);
            Assert.AreEqual(count, fields.Length);
            for (int k = 0; k < count; ++k)
            {
                Check.SameBits(fields[k], system.Solve(values[k]));
            }
        }

        [TestCase(0)]
        [TestCase(1)]
        [TestCase(37)]
        public void WithLoadsToo(int count)
        {
            double[][] values = Fields(count, double.NaN);
            double[][] loads = Fields(count, 0).Reverse().ToArray();
            double[][] fields = system.SolveMany(values, loads);
            Assert.AreEqual(count, fields.Length);
            for (int k = 0; k < count; ++k)
            {
                Check.SameBits(fields[k], system.Solve(values[k], loads[k]));
            }
        }

        [Test]
        public void TheArraysThatGoInAreLeftAlone()
        {
            double[][] values = Fields(3, 5);
            double[][] copies = Array.ConvertAll(values, field => (double[])field.Clone());
            double[][] fields = system.SolveMany(values);
            for (int k = 0; k < values.Length; ++k)
            {
                Check.SameBits(values[k], copies[k]);
                Assert.AreNotSame(values[k], fields[k]);
            }
        }

        [Test]
        public void WrongArgumentsAreRefusedByName()
        {
            double[][] good = Fields(3, 0);
            Check.Refuses<ArgumentNullException>("values", "", () => system.SolveMany(null));
            Check.Refuses<ArgumentNullException>("loads", "", () => system.SolveMany(good, null));
            Check.Refuses<ArgumentException>("loads", "there are 2 for 3",
                () => system.SolveMany(good, Fields(2, 0)));
            good[1] = null;
            Check.Refuses<ArgumentException>("values", "field 1 is null", () => system.SolveMany(good));
            good[1] = new double[71];
            Check.Refuses<ArgumentException>("values", "field 1: length is 71, must be 72",
                () => system.SolveMany(good));
            Check.Refuses<ArgumentException>("loads", "field 1: length is 71",
                () => system.SolveMany(Fields(3, 0), good));
            good[1] = Fields(1, 0)[0];
            good[1][3] = double.NaN;
            Check.Refuses<ArgumentException>("values", "field 1, vertex 3: value is NaN", () => system.SolveMany(good));
        }

        // Of a field in the second call of the library as well, which takes 64.
        [TestCase(0)]
        [TestCase(66)]
        public void NumbersThatAreNotFiniteAreNamedByFieldAndVertex(int field)
        {
            int isFixed = Array.FindIndex(mesh.Tags, tag => tag != 0);
            int isFree = Array.FindIndex(mesh.Tags, tag => tag == 0);
            double[][] values = Fields(70, double.NaN);
            double[][] loads = Fields(70, 0);
            loads[field][isFree] = double.PositiveInfinity;
            Check.Refuses<ArgumentException>("loads", "field " + field + ", vertex " + isFree + ": value is ",
                () => system.SolveMany(values, loads));
            values[field][isFixed] = double.NaN;
            Check.Refuses<ArgumentException>("values", "field " + field + ", vertex " + isFixed + ": value is NaN",
                () => system.SolveMany(values, loads));
            for (int i = 0; i < mesh.VertexCount; ++i)
            {
                values[field][i] = 1.7e308;
            }
            var error = Assert.Throws<SingularSystemException>(() => system.SolveMany(values));
            StringAssert.StartsWith("Field " + field + " is ", error.Message);
        }

        [Test]
        public void SystemsThatCannotBeSolvedAreReported()
        {
            mesh.Tags = new int[mesh.VertexCount];
            using (MeshSystem untied = mesh.Build(mustSolve: false))
            {
                Assert.Throws<SingularSystemException>(() => untied.SolveMany(Fields(2, 0)));
            }
        }

        private double[][] Fields(int count, double atFree)
        {
            return Enumerable.Range(0, count)
                .Select(k => mesh.AtTagged(mesh.Sample((x, y, z) => Math.Sin(k + x) + y), atFree))
                .ToArray();
        }
    }
}

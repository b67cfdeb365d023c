using System;
using System.IO;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class HeatMapTests
    {
        private string folder;
        private MeshSystem system;
        private readonly double[] field = { 2, 4, 3, 2 };

        [SetUp]
        public void SetUp()
        {
            folder = Path.Combine(Path.GetTempPath(), "qelm-" + Guid.NewGuid().ToString("N"));
            Directory.CreateDirectory(folder);
            system = TestMesh.Square().Build();
        }

        [TearDown]
        public void TearDown()
        {
            system.Dispose();
            Directory.Delete(folder, true);
        }

        [Test]
        public void BothFilesAreWrittenFromAFieldInInputOrder()
        {
            system.WriteHeatMap(field, At("map"));
            // System order of the square is 0, 2, 3, 1.
            CollectionAssert.AreEqual(
                new[]
                {
                    "mtllib " + At("map") + ".mtl", "usemtl Heat",
                    "v 0 0 0", "v 1 1 0", "v 0 1 0", "v 1 0 0",
                    "vt 1 0.5", "vt 0.5 0.5", "vt 1 0.5", "vt 0 0.5",
                    "f 1/1 4/4 2/2", "f 1/1 2/2 3/3"
                },
                File.ReadAllLines(At("map.obj")));
            string[] material = File.ReadAllLines(At("map.mtl"));
            Assert.AreEqual(8, material.Length);
            Assert.AreEqual("map_Kd viridis.PNG", material[7]);
        }

        [Test]
        public void TheColourRampIsWrittenBesideThem()
        {
            MeshSystem.WriteColourRamp(folder);
            byte[] image = File.ReadAllBytes(At("viridis.PNG"));
            CollectionAssert.AreEqual(new byte[] { 0x89, 0x50, 0x4e, 0x47 }, new ArraySegment<byte>(image, 0, 4));
            // Its size in the header: 2048 x 64.
            CollectionAssert.AreEqual(new byte[] { 0, 0, 8, 0, 0, 0, 0, 64 }, new ArraySegment<byte>(image, 16, 8));
            File.WriteAllText(At("viridis.PNG"), new string('x', 100000));
            MeshSystem.WriteColourRamp(folder);
            CollectionAssert.AreEqual(image, File.ReadAllBytes(At("viridis.PNG")));
            Assert.Throws<DirectoryNotFoundException>(() => MeshSystem.WriteColourRamp(At("missing")));
            Assert.Throws<ArgumentNullException>(() => MeshSystem.WriteColourRamp(null));
        }

        [Test]
        public void FilesThatExistAreReplaced()
        {
            File.WriteAllText(At("map.obj"), new string('x', 10000));
            File.WriteAllText(At("map.mtl"), new string('x', 10000));
            system.WriteHeatMap(field, At("map"));
            StringAssert.DoesNotContain("x", File.ReadAllText(At("map.mtl")));
            Assert.Less(new FileInfo(At("map.obj")).Length, 1000);
        }

        [Test]
        public void PathsMayHaveBlanksAndLettersOfOtherAlphabets()
        {
            system.WriteHeatMap(field, At("höhe über grund 山"));
            StringAssert.StartsWith("mtllib " + At("höhe über grund 山") + ".mtl\n",
                File.ReadAllText(At("höhe über grund 山.obj")));
        }

        [Test]
        public void AMissingFolderIsAnError()
        {
            Assert.Throws<DirectoryNotFoundException>(() => system.WriteHeatMap(field, At("missing/map")));
        }

        [Test]
        public void AnMtlThatCannotBeWrittenIsAnErrorAndLeavesNothingBehind()
        {
            Directory.CreateDirectory(At("map.mtl"));
            Assert.That(() => system.WriteHeatMap(field, At("map")),
                Throws.InstanceOf<IOException>().Or.InstanceOf<UnauthorizedAccessException>());
            Assert.IsFalse(File.Exists(At("map.obj")));
        }

        [Test]
        public void AnObjThatCannotBeWrittenIsAnErrorAndLeavesTheOtherFileAsItWas()
        {
            Directory.CreateDirectory(At("map.obj"));
            File.WriteAllText(At("map.mtl"), "mine");
            Assert.That(() => system.WriteHeatMap(field, At("map")),
                Throws.InstanceOf<IOException>().Or.InstanceOf<UnauthorizedAccessException>());
            Assert.AreEqual("mine", File.ReadAllText(At("map.mtl")));
        }

        [Test]
        public void NothingOldIsLeftWhenTheExportBegins()
        {
            File.WriteAllText(At("map.obj"), "old");
            File.WriteAllText(At("map.mtl"), "old");
            new HeatMapFiles(At("map")).Clear();
            Assert.AreEqual(0, new FileInfo(At("map.obj")).Length);
            Assert.AreEqual(0, new FileInfo(At("map.mtl")).Length);
        }

        [Test]
        public void FilesThatStayEmptyAreAnError()
        {
            var files = new HeatMapFiles(At("map"));
            files.Clear();
            Assert.Throws<IOException>(() => files.EnsureComplete(new[] { 0, 1, 2 }));
        }

        [Test]
        public void AFileThatEndsInTheMiddleOfItsLastLineIsAnError()
        {
            system.WriteHeatMap(field, At("map"));
            var files = new HeatMapFiles(At("map"));
            files.EnsureComplete(new[] { 0, 1, 2 });
            using (FileStream obj = File.OpenWrite(At("map.obj")))
            {
                obj.SetLength(obj.Length - 3);
            }
            Assert.Throws<IOException>(() => files.EnsureComplete(new[] { 0, 1, 2 }));
        }

        [Test]
        public void WrongArgumentsAreRefused()
        {
            Check.Refuses<ArgumentNullException>("field", "", () => system.WriteHeatMap(null, At("map")));
            Check.Refuses<ArgumentNullException>("path", "", () => system.WriteHeatMap(field, null));
            Check.Refuses<ArgumentException>("path", "", () => system.WriteHeatMap(field, ""));
            Check.Refuses<ArgumentException>("path", "", () => system.WriteHeatMap(field, At("a") + "\0b"));
            Check.Refuses<ArgumentException>("field", "must be 4", () => system.WriteHeatMap(new double[3], At("map")));
            Check.Refuses<ArgumentException>("field", "vertex 1: value is NaN",
                () => system.WriteHeatMap(new[] { 1, double.NaN, 2, 3 }, At("map")));
            Check.Refuses<ArgumentException>("field", "every value is 7",
                () => system.WriteHeatMap(new double[] { 7, 7, 7, 7 }, At("map")));
            CollectionAssert.IsEmpty(Directory.GetFileSystemEntries(folder));
        }

        private string At(string name)
        {
            return Path.Combine(folder, name);
        }
    }
}

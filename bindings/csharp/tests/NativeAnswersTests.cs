using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using NUnit.Framework;

namespace Qelm.Tests
{
    /// <summary>The same mesh through the binding and through a program in C: the same bits.</summary>
    [TestFixture]
    public class NativeAnswersTests
    {
        private TestMesh mesh;
        private double[] values;
        private double[] load;
        private BinaryReader answers;

        [TestFixtureSetUp]
        public void AskTheProgramInC()
        {
            mesh = TestMesh.Roof();
            values = mesh.Sample((x, y, z) => Math.Sin(x) + z);
            load = mesh.Sample((x, y, z) => Math.Cos(y) / 100);
            string input = Path.GetTempFileName();
            string output = Path.GetTempFileName();
            using (var writer = new BinaryWriter(File.Create(input)))
            {
                writer.Write(mesh.VertexCount);
                writer.Write(mesh.Triangles.Length / 3);
                Array.ForEach(mesh.Vertices, writer.Write);
                Array.ForEach(mesh.Triangles, writer.Write);
                Array.ForEach(mesh.Tags, writer.Write);
                Array.ForEach(values, writer.Write);
                Array.ForEach(load, writer.Write);
            }
            NativeProgram.Run("native_answers", input, output);
            answers = new BinaryReader(new MemoryStream(File.ReadAllBytes(output)));
            File.Delete(input);
            File.Delete(output);
        }

        [Test]
        public void EveryAnswerIsTheSameBitForBit()
        {
            using (MeshSystem system = mesh.Build())
            {
                double[] field = system.Solve(values);
                Check.SameBits(field, NextNumbers(mesh.VertexCount));
                Check.SameBits(system.Solve(values, load), NextNumbers(mesh.VertexCount));
                SameCurves(system.Curves(field, 0.25, 1.5, 3.0));
            }
            Assert.AreEqual(answers.BaseStream.Length, answers.BaseStream.Position, "every answer was compared");
        }

        private void SameCurves(IReadOnlyList<Curve> curves)
        {
            Assert.Greater(curves.Count, 3, "the levels are well chosen");
            Assert.AreEqual(answers.ReadDouble(), curves.Count);
            foreach (Curve curve in curves)
            {
                var head = new double[] { curve.LevelIndex, curve.IsClosed ? 1 : 0, curve.Points.Count };
                CollectionAssert.AreEqual(NextNumbers(3), head);
                double[] packed = curve.Points.SelectMany(point => new[] { point.X, point.Y, point.Z }).ToArray();
                Check.SameBits(packed, NextNumbers(packed.Length));
            }
        }

        private double[] NextNumbers(int count)
        {
            var numbers = new double[count];
            for (int i = 0; i < count; ++i)
            {
                numbers[i] = answers.ReadDouble();
            }
            return numbers;
        }
    }
}

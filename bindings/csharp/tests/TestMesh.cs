using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;

namespace Qelm.Tests
{
    /// <summary>Named shapes.</summary>
    internal sealed class TestMesh
    {
        internal double[] Vertices;
        internal int[] Triangles;
        internal int[] Tags;

        internal int VertexCount
        {
            get { return Vertices.Length / 3; }
        }

        internal MeshSystem Build(bool mustSolve = true)
        {
            return MeshSystem.Build(Vertices, Triangles, Tags, mustSolve);
        }

        /// <summary>A unit square of two triangles; opposite corners 0 and 2 are tagged.</summary>
        internal static TestMesh Square()
        {
            return new TestMesh
            {
                Vertices = new double[] { 0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0 },
                Triangles = new[] { 0, 1, 2, 0, 2, 3 },
                Tags = new[] { 1, 0, 1, 0 }
            };
        }

        /// <summary>A flat grid of columns x rows vertices with spacing 1, its rim tagged.</summary>
        internal static TestMesh Grid(int columns, int rows)
        {
            var mesh = new TestMesh
            {
                Vertices = new double[3 * columns * rows],
                Triangles = new int[6 * (columns - 1) * (rows - 1)],
                Tags = new int[columns * rows]
            };
            int k = 0;
            for (int y = 0; y < rows; ++y)
            {
                for (int x = 0; x < columns; ++x)
                {
                    int i = y * columns + x;
                    mesh.Vertices[3 * i] = x;
                    mesh.Vertices[3 * i + 1] = y;
                    bool rim = x == 0 || y == 0 || x == columns - 1 || y == rows - 1;
                    mesh.Tags[i] = rim ? 1 + i % 3 : 0;
                    if (x + 1 < columns && y + 1 < rows)
                    {
                        foreach (int corner in new[] { i, i + 1, i + columns + 1, i, i + columns + 1, i + columns })
                        {
                            mesh.Triangles[k++] = corner;
                        }
                    }
                }
            }
            return mesh;
        }

        /// <summary>The shell roof of the demonstration, every seventh vertex tagged.</summary>
        internal static TestMesh Roof()
        {
            var vertices = new List<double>();
            var triangles = new List<int>();
            foreach (string line in File.ReadLines(Path.Combine(Environment.GetEnvironmentVariable("QELM_SOURCE_DIR"),
                "data", "roof.obj")))
            {
                string[] words = line.Split(' ');
                for (int k = 1; k < words.Length; ++k)
                {
                    if (words[0] == "v")
                    {
                        vertices.Add(double.Parse(words[k], CultureInfo.InvariantCulture));
                    }
                    else if (words[0] == "f")
                    {
                        triangles.Add(int.Parse(words[k], CultureInfo.InvariantCulture) - 1);
                    }
                }
            }
            var mesh = new TestMesh { Vertices = vertices.ToArray(), Triangles = triangles.ToArray() };
            mesh.Tags = new int[mesh.VertexCount];
            for (int i = 0; i < mesh.VertexCount; i += 7)
            {
                mesh.Tags[i] = 2;
            }
            return mesh;
        }

        /// <summary>The values of a function at the vertices.</summary>
        internal double[] Sample(Func<double, double, double, double> function)
        {
            var field = new double[VertexCount];
            for (int i = 0; i < field.Length; ++i)
            {
                field[i] = function(Vertices[3 * i], Vertices[3 * i + 1], Vertices[3 * i + 2]);
            }
            return field;
        }

        /// <summary>The field with something else wherever a solve must not look.</summary>
        internal double[] AtTagged(double[] field, double elsewhere)
        {
            var values = (double[])field.Clone();
            for (int i = 0; i < values.Length; ++i)
            {
                if (Tags[i] == 0)
                {
                    values[i] = elsewhere;
                }
            }
            return values;
        }

        internal double[] AtFree(double[] field, double elsewhere)
        {
            var values = (double[])field.Clone();
            for (int i = 0; i < values.Length; ++i)
            {
                if (Tags[i] != 0)
                {
                    values[i] = elsewhere;
                }
            }
            return values;
        }
    }
}

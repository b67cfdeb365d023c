using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;

namespace RimCurves
{
    /// <summary>The vertices and faces of an OBJ file; polygons are cut into fans of triangles.</summary>
    internal sealed class ObjMesh
    {
        private static readonly char[] Blanks = { ' ', '\t' };

        private readonly List<double> vertices = new List<double>();
        private readonly List<int> triangles = new List<int>();

        internal double[] Vertices
        {
            get { return vertices.ToArray(); }
        }

        internal int[] Triangles
        {
            get { return triangles.ToArray(); }
        }

        internal static ObjMesh Read(string path)
        {
            var mesh = new ObjMesh();
            int number = 0;
            foreach (string line in File.ReadLines(path))
            {
                ++number;
                try
                {
                    mesh.Add(line.Split(Blanks, StringSplitOptions.RemoveEmptyEntries));
                }
                catch (Exception error) when (error is FormatException || error is OverflowException)
                {
                    throw new FormatException(path + ":" + number + ": " + error.Message);
                }
            }
            return mesh;
        }

        private void Add(string[] words)
        {
            if (words.Length >= 4 && words[0] == "v")
            {
                for (int k = 1; k <= 3; ++k)
                {
                    vertices.Add(double.Parse(words[k], NumberStyles.Float, CultureInfo.InvariantCulture));
                }
            }
            else if (words.Length >= 4 && words[0] == "f")
            {
                for (int k = 3; k < words.Length; ++k)
                {
                    triangles.Add(Index(words[1]));
                    triangles.Add(Index(words[k - 1]));
                    triangles.Add(Index(words[k]));
                }
            }
        }

        /// <summary>Corners are "7", "7/1", "7//3" or "7/1/3"; negative ones count back from the last vertex.</summary>
        private int Index(string corner)
        {
            int index = int.Parse(corner.Split('/')[0], CultureInfo.InvariantCulture);
            return index < 0 ? vertices.Count / 3 + index : index - 1;
        }
    }
}

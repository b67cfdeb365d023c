using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;
using Qelm;

namespace RimCurves
{
    /// <summary>
    /// Draws smooth curves on a surface from one of its rims to another: the longest boundary loop is held at 0, the
    /// second longest at 1, and the level curves of the field between them are printed and written as polylines.
    /// </summary>
    public static class Program
    {
        private const int OuterRim = 1;
        private const int InnerRim = 2;

        /// <summary>Runs the sample.</summary>
        /// <param name="arguments">MESH.obj CURVES.obj [COUNT].</param>
        /// <returns>0 on success, 1 for a mesh or file that cannot be used, 2 for wrong arguments.</returns>
        public static int Main(string[] arguments)
        {
            int count = 9;
            if (arguments.Length < 2 || arguments.Length > 3
                || (arguments.Length == 3 && (!int.TryParse(arguments[2], out count) || count < 1)))
            {
                Console.Error.WriteLine("usage: RimCurves MESH.obj CURVES.obj [COUNT]");
                return 2;
            }
            try
            {
                Run(arguments[0], arguments[1], count);
                return 0;
            }
            catch (Exception error) when (error is IOException || error is ArgumentException
                || error is FormatException || error is UnauthorizedAccessException || error is QelmException)
            {
                Console.Error.WriteLine("RimCurves: " + error.Message);
                return 1;
            }
        }

        private static void Run(string meshPath, string curvesPath, int count)
        {
            ObjMesh mesh = ObjMesh.Read(meshPath);
            List<int[]> rims = BoundaryLoops.LongestFirst(mesh.Vertices, mesh.Triangles);
            if (rims.Count < 2)
            {
                throw new ArgumentException("the mesh has " + rims.Count + " boundary loops, two are needed");
            }

            var tags = new int[mesh.Vertices.Length / 3];
            var values = new double[tags.Length];
            Array.ForEach(rims[0], i => tags[i] = OuterRim);
            Array.ForEach(rims[1], i => tags[i] = InnerRim);
            Array.ForEach(rims[1], i => values[i] = 1);

            using (MeshSystem system = MeshSystem.Build(mesh.Vertices, mesh.Triangles, tags))
            {
                double[] field = system.Solve(values);
                IReadOnlyList<Curve> curves = system.Curves(field, EvenLevels(count));
                Print(curves);
                ObjCurves.Write(curvesPath, curves);
            }
        }

        private static double[] EvenLevels(int count)
        {
            var levels = new double[count];
            for (int k = 0; k < count; ++k)
            {
                levels[k] = (k + 1.0) / (count + 1);
            }
            return levels;
        }

        private static void Print(IReadOnlyList<Curve> curves)
        {
            foreach (Curve curve in curves)
            {
                Console.WriteLine(string.Format(CultureInfo.InvariantCulture,
                    "level {0:0.###}: {1}, {2} points, length {3:0.000}", curve.Level,
                    curve.IsClosed ? "closed" : "open", curve.Points.Count, curve.Length));
            }
        }
    }
}

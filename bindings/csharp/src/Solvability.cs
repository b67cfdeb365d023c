using System;

namespace Qelm
{
    /// <summary>
    /// What makes equations singular without the factorisation noticing: triangles without area, or so large or small
    /// that entries are not finite, and parts of the mesh without a tagged vertex, whose fields are determined only up
    /// to a constant. One judgement, for <c>Mesh.Check</c> and <c>MeshSystem.Build</c> alike.
    /// </summary>
    internal static unsafe class Solvability
    {
        /// <summary>The first defect in words, or null; <paramref name="name"/> is the argument to blame. After
        /// robust construction, areas do not matter.</summary>
        internal static string FirstDefect(TaggedMesh mesh, bool robust, out string name)
        {
            name = "triangles";
            for (int t = 0; t < mesh.TriangleCount && !robust; ++t)
            {
                string defect = Defect(mesh.Vertices, mesh.Triangles + 3L * t);
                if (defect != null)
                {
                    return Ensure.Triangle(mesh.Triangles, t) + ": " + defect;
                }
            }
            name = "tags";
            int vertex = FirstInUntaggedPart(mesh);
            return vertex < 0 ? null : "no vertex of the part of the mesh with vertex " + Text.Of(vertex)
                + " is tagged 1, 2 or 3";
        }

        // A triangle lower than this many roundings of its largest coordinate cannot be told from one without area.
        private const double FlatRoundings = 8;

        private const double Rounding = 1.0 / (1L << 52);

        // As the native check has them: the assembly forms fourth powers of lengths.
        private const double ShortestLongestEdge = 1e-60;
        private const double LongestLongestEdge = 1e60;

        private static string Defect(double* vertices, int* corner)
        {
            double* p = vertices + 3L * corner[0];
            double* q = vertices + 3L * corner[1];
            double* r = vertices + 3L * corner[2];
            double ax = q[0] - p[0], ay = q[1] - p[1], az = q[2] - p[2];
            double bx = r[0] - p[0], by = r[1] - p[1], bz = r[2] - p[2];
            double longest = Math.Max(Length(ax, ay, az),
                Math.Max(Length(bx, by, bz), Length(bx - ax, by - ay, bz - az)));
            if (longest > 0 && !(longest >= ShortestLongestEdge && longest <= LongestLongestEdge))
            {
                return "it is too small or too large to compute with";
            }
            double twiceArea = Length(ay * bz - az * by, az * bx - ax * bz, ax * by - ay * bx);
            double noise = FlatRoundings * Rounding * Math.Max(Largest(p), Math.Max(Largest(q), Largest(r)));
            return twiceArea > noise * longest ? null : "its area is not a positive number "
                + "beyond rounding; MeshSystem.BuildRobust takes such triangles";
        }

        private static double Length(double x, double y, double z)
        {
            return Math.Sqrt(x * x + y * y + z * z);
        }

        private static double Largest(double* point)
        {
            return Math.Max(Math.Abs(point[0]), Math.Max(Math.Abs(point[1]), Math.Abs(point[2])));
        }

        /// <summary>The lowest vertex of the connected parts without a tagged vertex; -1 if there are none. Parts come
        /// from union-find over the triangles.</summary>
        private static int FirstInUntaggedPart(TaggedMesh mesh)
        {
            var parent = new int[mesh.VertexCount];
            for (int i = 0; i < parent.Length; ++i)
            {
                parent[i] = i;
            }
            for (long t = 0; t < mesh.TriangleCount; ++t)
            {
                int* corner = mesh.Triangles + 3 * t;
                Unite(parent, corner[0], corner[1]);
                Unite(parent, corner[0], corner[2]);
            }
            var isTagged = new bool[parent.Length];
            for (int i = 0; i < isTagged.Length; ++i)
            {
                isTagged[Root(parent, i)] |= VertexOrder.IsPrescribed(mesh.Tags[i]);
            }
            for (int i = 0; i < isTagged.Length; ++i)
            {
                if (!isTagged[Root(parent, i)])
                {
                    return i;
                }
            }
            return -1;
        }

        private static void Unite(int[] parent, int a, int b)
        {
            parent[Root(parent, a)] = Root(parent, b);
        }

        private static int Root(int[] parent, int i)
        {
            while (parent[i] != i)
            {
                parent[i] = parent[parent[i]];
                i = parent[i];
            }
            return i;
        }
    }
}

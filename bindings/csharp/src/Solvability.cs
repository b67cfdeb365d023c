using System;

namespace Qelm
{
    /// <summary>
    /// What makes equations singular without the factorisation noticing: triangles without area, whose entries are not
    /// finite, and parts of the mesh without a tagged vertex, whose level is undetermined.
    /// </summary>
    internal static unsafe class Solvability
    {
        /// <summary>The first defect in words, or null; <paramref name="name"/> is the argument to blame. After
        /// robust construction, areas do not matter.</summary>
        internal static string FirstDefect(double* vertices, int vertexCount, int* triangles, int triangleCount,
            int* tags, bool robust, out string name)
        {
            name = "triangles";
            for (int t = 0; t < triangleCount && !robust; ++t)
            {
                if (!HasArea(vertices, triangles + 3L * t))
                {
                    return Ensure.Triangle(triangles, t) + ": its area is not a positive number; "
                        + "MeshSystem.BuildRobust takes such triangles";
                }
            }
            name = "tags";
            int untied = FirstUntied(vertexCount, triangles, triangleCount, tags);
            return untied < 0 ? null : "no vertex of the part of the mesh with vertex " + Text.Of(untied)
                + " is tagged 1, 2 or 3";
        }

        // In the numbers of the native assembly: what it divides by is this area.
        private static bool HasArea(double* vertices, int* corner)
        {
            double* p = vertices + 3L * corner[0];
            double* q = vertices + 3L * corner[1];
            double* r = vertices + 3L * corner[2];
            double ax = q[0] - p[0], ay = q[1] - p[1], az = q[2] - p[2];
            double bx = r[0] - p[0], by = r[1] - p[1], bz = r[2] - p[2];
            double x = ay * bz - az * by;
            double y = az * bx - ax * bz;
            double z = ax * by - ay * bx;
            double square = x * x + y * y + z * z;
            return square > 0 && Ensure.IsFinite(square);
        }

        /// <summary>The lowest vertex that no chain of triangles ties to a tagged one; -1 without any.</summary>
        private static int FirstUntied(int vertexCount, int* triangles, int triangleCount, int* tags)
        {
            var parent = new int[vertexCount];
            for (int i = 0; i < vertexCount; ++i)
            {
                parent[i] = i;
            }
            for (long t = 0; t < triangleCount; ++t)
            {
                Join(parent, triangles[3 * t], triangles[3 * t + 1]);
                Join(parent, triangles[3 * t], triangles[3 * t + 2]);
            }
            var tied = new bool[vertexCount];
            for (int i = 0; i < vertexCount; ++i)
            {
                tied[Root(parent, i)] |= VertexOrder.IsPrescribed(tags[i]);
            }
            for (int i = 0; i < vertexCount; ++i)
            {
                if (!tied[Root(parent, i)])
                {
                    return i;
                }
            }
            return -1;
        }

        private static void Join(int[] parent, int a, int b)
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

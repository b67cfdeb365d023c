using System;

namespace Qelm
{
    /// <summary>
    /// Argument checks. The native library checks no length, index or number, so everything is looked at here,
    /// before the call; a message names the first element that is wrong.
    /// </summary>
    internal static unsafe class Ensure
    {
        internal static void NotNull(object argument, string name)
        {
            if (argument == null)
            {
                throw new ArgumentNullException(name);
            }
        }

        internal static void NotNull(double[] vertices, int[] triangles, int[] tags)
        {
            NotNull(vertices, "vertices");
            NotNull(triangles, "triangles");
            NotNull(tags, "tags");
        }

        /// <summary>Three numbers per element; returns the number of elements.</summary>
        internal static int Triples(int length, string name)
        {
            if (length % 3 != 0)
            {
                throw new ArgumentException("length " + Text.Of(length) + " is not a multiple of 3", name);
            }
            return length / 3;
        }

        internal static void Length(int length, int expected, string name)
        {
            if (length != expected)
            {
                throw new ArgumentException("length is " + Text.Of(length) + ", must be " + Text.Of(expected)
                    + " (one per vertex)", name);
            }
        }

        /// <summary>All that construction expects of coordinates and indices.</summary>
        internal static void Elements(TaggedMesh mesh)
        {
            AtLeastOne(mesh.VertexCount, "vertex", "vertices");
            AtLeastOne(mesh.TriangleCount, "triangle", "triangles");
            FiniteCoordinates(mesh.Vertices, mesh.VertexCount, "vertices");
            IndicesInRange(mesh.Triangles, mesh.TriangleCount, mesh.VertexCount, "triangles");
            DistinctCorners(mesh.Triangles, mesh.TriangleCount, "triangles");
            EveryVertexUsed(mesh.Triangles, mesh.TriangleCount, mesh.VertexCount, "triangles");
        }

        internal static void AtLeastOne(int count, string element, string name)
        {
            if (count < 1)
            {
                throw new ArgumentException("there is no " + element, name);
            }
        }

        internal static void FiniteCoordinates(double* vertices, int vertexCount, string name)
        {
            for (long k = 0; k < 3L * vertexCount; ++k)
            {
                if (!IsFinite(vertices[k]))
                {
                    throw new ArgumentException("vertex " + Text.Of((int)(k / 3)) + ": " + "xyz"[(int)(k % 3)]
                        + " is " + Text.Of(vertices[k]), name);
                }
            }
        }

        internal static void IndicesInRange(int* triangles, int triangleCount, int vertexCount, string name)
        {
            for (long k = 0; k < 3L * triangleCount; ++k)
            {
                // One comparison for both ends: a negative index is a large unsigned one.
                if ((uint)triangles[k] >= (uint)vertexCount)
                {
                    throw new ArgumentException(Triangle(triangles, k / 3) + ": vertex " + Text.Of(triangles[k])
                        + " is not in 0 .. " + Text.Of(vertexCount - 1), name);
                }
            }
        }

        internal static void DistinctCorners(int* triangles, int triangleCount, string name)
        {
            for (long t = 0; t < triangleCount; ++t)
            {
                int* corner = triangles + 3 * t;
                if (corner[0] == corner[1] || corner[1] == corner[2] || corner[2] == corner[0])
                {
                    throw new ArgumentException(Triangle(triangles, t) + ": names a vertex twice", name);
                }
            }
        }

        internal static void EveryVertexUsed(int* triangles, int triangleCount, int vertexCount, string name)
        {
            var used = new bool[vertexCount];
            for (long k = 0; k < 3L * triangleCount; ++k)
            {
                used[triangles[k]] = true;
            }
            int unused = Array.IndexOf(used, false);
            if (unused >= 0)
            {
                throw new ArgumentException("vertex " + Text.Of(unused) + " lies in no triangle", name);
            }
        }

        internal static void FiniteNumbers(double* numbers, int count, string element, string name)
        {
            for (int i = 0; i < count; ++i)
            {
                Finite(numbers[i], element, i, name);
            }
        }

        internal static void Finite(double number, string element, int index, string name)
        {
            if (!IsFinite(number))
            {
                throw new ArgumentException(element + " " + Text.Of(index) + ": value is " + Text.Of(number), name);
            }
        }

        internal static bool IsFinite(double number)
        {
            // NaN and both infinities give NaN here, which compares unequal.
            return number - number == 0;
        }

        internal static string Triangle(int* triangles, long index)
        {
            int* corner = triangles + 3 * index;
            return "triangle " + Text.Of((int)index) + " (" + Text.Of(corner[0]) + ", " + Text.Of(corner[1]) + ", "
                + Text.Of(corner[2]) + ")";
        }
    }
}

// The same operations on spans, for frameworks that have them.
#if NET6_0_OR_GREATER
using System;
using System.Runtime.InteropServices;

namespace Qelm
{
    public sealed unsafe partial class MeshSystem
    {
        /// <inheritdoc cref="Build(double[], int[], int[], bool)"/>
        public static MeshSystem Build(ReadOnlySpan<double> vertices, ReadOnlySpan<int> triangles,
            ReadOnlySpan<int> tags, bool mustSolve = true)
        {
            fixed (double* v = &MemoryMarshal.GetReference(vertices))
            fixed (int* t = &MemoryMarshal.GetReference(triangles), g = &MemoryMarshal.GetReference(tags))
            {
                return Build(new TaggedMesh(v, vertices.Length, t, triangles.Length, g, tags.Length), mustSolve,
                    robust: false);
            }
        }

        /// <inheritdoc cref="BuildRobust(double[], int[], int[], bool)"/>
        public static MeshSystem BuildRobust(ReadOnlySpan<double> vertices, ReadOnlySpan<int> triangles,
            ReadOnlySpan<int> tags, bool mustSolve = true)
        {
            fixed (double* v = &MemoryMarshal.GetReference(vertices))
            fixed (int* t = &MemoryMarshal.GetReference(triangles), g = &MemoryMarshal.GetReference(tags))
            {
                return Build(new TaggedMesh(v, vertices.Length, t, triangles.Length, g, tags.Length), mustSolve,
                    robust: true);
            }
        }

        /// <inheritdoc cref="SolveInto(double[], double[])"/>
        public void SolveInto(ReadOnlySpan<double> values, Span<double> result)
        {
            fixed (double* v = &MemoryMarshal.GetReference(values), r = &MemoryMarshal.GetReference(result))
            {
                SolveInto(v, values.Length, null, r, result.Length);
            }
        }

        /// <inheritdoc cref="SolveInto(double[], double[], double[])"/>
        public void SolveInto(ReadOnlySpan<double> values, ReadOnlySpan<double> load, Span<double> result)
        {
            Ensure.Length(load.Length, VertexCount, "load");
            fixed (double* v = &MemoryMarshal.GetReference(values), l = &MemoryMarshal.GetReference(load))
            fixed (double* r = &MemoryMarshal.GetReference(result))
            {
                SolveInto(v, values.Length, l, r, result.Length);
            }
        }

        /// <inheritdoc cref="Curves(double[], double[])"/>
        public System.Collections.Generic.IReadOnlyList<Curve> Curves(ReadOnlySpan<double> field,
            ReadOnlySpan<double> levels)
        {
            fixed (double* f = &MemoryMarshal.GetReference(field), l = &MemoryMarshal.GetReference(levels))
            {
                return Curves(f, field.Length, l, levels.Length);
            }
        }

        /// <inheritdoc cref="WriteHeatMap(double[], string)"/>
        public void WriteHeatMap(ReadOnlySpan<double> field, string path)
        {
            fixed (double* f = &MemoryMarshal.GetReference(field))
            {
                WriteHeatMap(f, field.Length, path);
            }
        }
    }

    public static unsafe partial class Mesh
    {
        /// <inheritdoc cref="Weld(double[], int[], double)"/>
        public static WeldedMesh Weld(ReadOnlySpan<double> vertices, ReadOnlySpan<int> triangles, double tolerance)
        {
            fixed (double* v = &MemoryMarshal.GetReference(vertices))
            fixed (int* t = &MemoryMarshal.GetReference(triangles))
            {
                return Weld(v, vertices.Length, t, triangles.Length, tolerance);
            }
        }

        /// <inheritdoc cref="Check(double[], int[], int[])"/>
        public static MeshReport Check(ReadOnlySpan<double> vertices, ReadOnlySpan<int> triangles,
            ReadOnlySpan<int> tags)
        {
            fixed (double* v = &MemoryMarshal.GetReference(vertices))
            fixed (int* t = &MemoryMarshal.GetReference(triangles), g = &MemoryMarshal.GetReference(tags))
            {
                return Check(new TaggedMesh(v, vertices.Length, t, triangles.Length, g, tags.Length));
            }
        }

        /// <inheritdoc cref="Predict(double[], int[], int[], bool)"/>
        public static Prediction Predict(ReadOnlySpan<double> vertices, ReadOnlySpan<int> triangles,
            ReadOnlySpan<int> tags, bool robust = false)
        {
            fixed (double* v = &MemoryMarshal.GetReference(vertices))
            fixed (int* t = &MemoryMarshal.GetReference(triangles), g = &MemoryMarshal.GetReference(tags))
            {
                return Predict(new TaggedMesh(v, vertices.Length, t, triangles.Length, g, tags.Length), robust);
            }
        }

        /// <inheritdoc cref="CheckRobust(double[], int[], int[])"/>
        public static RobustReport CheckRobust(ReadOnlySpan<double> vertices, ReadOnlySpan<int> triangles,
            ReadOnlySpan<int> tags)
        {
            fixed (double* v = &MemoryMarshal.GetReference(vertices))
            fixed (int* t = &MemoryMarshal.GetReference(triangles), g = &MemoryMarshal.GetReference(tags))
            {
                return CheckRobust(new TaggedMesh(v, vertices.Length, t, triangles.Length, g, tags.Length));
            }
        }
    }
}
#endif

using System;
using System.Runtime.InteropServices;

namespace Qelm
{
    public sealed unsafe partial class MeshSystem
    {
        /// <summary>
        /// Rearranges a field from input order into system order, the numbering inside the native library: tagged
        /// vertices first, free ones from the back. Needed only beside <see cref="SystemVertices"/> and
        /// <see cref="SystemTriangles()"/>; every other member takes input order.
        /// </summary>
        /// <param name="field">One value per vertex, input order.</param>
        /// <returns>The same values, system order.</returns>
        /// <exception cref="ArgumentNullException">The array is null.</exception>
        /// <exception cref="ArgumentException">The length is wrong.</exception>
        public double[] ToSystemOrder(double[] field)
        {
            Ensure.NotNull(field, "field");
            Ensure.Length(field.Length, VertexCount, "field");
            var system = new double[VertexCount];
            fixed (double* from = field, to = system)
            {
                order.ToSystem(from, to);
            }
            return system;
        }

        /// <summary>Rearranges a field from system order into input order.</summary>
        /// <param name="systemField">One value per vertex, system order.</param>
        /// <returns>The same values, input order.</returns>
        /// <exception cref="ArgumentNullException">The array is null.</exception>
        /// <exception cref="ArgumentException">The length is wrong.</exception>
        public double[] ToInputOrder(double[] systemField)
        {
            Ensure.NotNull(systemField, "systemField");
            Ensure.Length(systemField.Length, VertexCount, "systemField");
            var input = new double[VertexCount];
            fixed (double* from = systemField, to = input)
            {
                order.ToInput(from, to);
            }
            return input;
        }

        /// <summary>A copy of the coordinates as the system keeps them: x, y, z of each vertex, system order.</summary>
        /// <returns>Three numbers per vertex.</returns>
        /// <exception cref="ObjectDisposedException">The system is disposed.</exception>
        public double[] SystemVertices()
        {
            var copy = new double[3 * VertexCount];
            using (new HandleLease(Live()))
            {
                double* coordinates = null;
                NativeMethods.qelverts(handle, &coordinates);
                Marshal.Copy((IntPtr)coordinates, copy, 0, copy.Length);
            }
            return copy;
        }

        /// <summary>A copy of the triangles as the system keeps them: in input order, their vertices in system
        /// numbering.</summary>
        /// <returns>Three vertex numbers per triangle.</returns>
        /// <exception cref="ObjectDisposedException">The system is disposed.</exception>
        public int[] SystemTriangles()
        {
            return SystemTriangles(0, TriangleCount);
        }

        private int[] LastSystemTriangle()
        {
            return SystemTriangles(TriangleCount - 1, 1);
        }

        private int[] SystemTriangles(int first, int count)
        {
            var copy = new int[3 * count];
            using (new HandleLease(Live()))
            {
                int* indices = null;
                NativeMethods.qeltris(handle, &indices);
                Marshal.Copy((IntPtr)(indices + 3L * first), copy, 0, copy.Length);
            }
            return copy;
        }
    }
}

using System;
using System.Runtime.InteropServices;

namespace Qelm
{
    /// <summary>
    /// A triangle mesh with its factorised Laplace system: built once, then solved as often as wanted for values
    /// that are smooth between the prescribed ones.
    /// </summary>
    /// <remarks>
    /// <para>Every field that goes in or comes out has one value per vertex in the order of the caller's arrays
    /// (input order). Members that hand out the system's own numbering say so in their name.</para>
    /// <para>All members may be called from any number of threads at once. Disposing while a call is running on
    /// another thread lets that call finish first.</para>
    /// <para>When memory runs out inside the native library, a C++ exception leaves it. Managed code cannot catch
    /// that: the process ends. The memory that a factorisation needs grows faster than the mesh; the C header's
    /// documentation has figures.</para>
    /// </remarks>
    public sealed unsafe partial class MeshSystem : IDisposable
    {
        private readonly MeshSystemHandle handle;
        private readonly VertexOrder order;

        /// <summary>Why no solve would be well posed, as far as the mesh tells; null when nothing is known.</summary>
        private readonly string defect;

        private MeshSystem(MeshSystemHandle handle, VertexOrder order, int triangleCount, string defect)
        {
            this.handle = handle;
            this.order = order;
            this.defect = defect;
            TriangleCount = triangleCount;
            FactorisationInfo = (FactorisationInfo)NativeMethods.qelminfo(handle);
        }

        /// <summary>Number of vertices.</summary>
        public int VertexCount
        {
            get { return order.Count; }
        }

        /// <summary>Number of vertices whose value is prescribed: those with tag 1, 2 or 3.</summary>
        public int FixedCount
        {
            get { return order.FixedCount; }
        }

        /// <summary>Number of triangles.</summary>
        public int TriangleCount { get; private set; }

        /// <summary>How the factorisation ended; kept from the construction.</summary>
        public FactorisationInfo FactorisationInfo { get; private set; }

        /// <summary>
        /// How many systems share this one's factorisation: 1, and one more for each duplicate that is not disposed.
        /// </summary>
        /// <exception cref="ObjectDisposedException">The system is disposed.</exception>
        public int UseCount
        {
            get { return NativeMethods.usecount(Live()); }
        }

        /// <summary>Builds a system and factorises it.</summary>
        /// <param name="vertices">Coordinates x, y, z of each vertex; every vertex lies in a triangle.</param>
        /// <param name="triangles">Three vertex numbers per triangle, from 0.</param>
        /// <param name="tags">One tag per vertex: 1, 2 and 3 mean that its value will be prescribed, any other
        /// number that it is free.</param>
        /// <param name="mustSolve">True: throw unless every solve will be well posed. False: build anyway, for a
        /// system of which only curves and heat maps of other fields are wanted; solving then throws.</param>
        /// <returns>The system, to be disposed.</returns>
        /// <exception cref="ArgumentNullException">An array is null.</exception>
        /// <exception cref="ArgumentException">A length, index or coordinate is wrong, or, with
        /// <paramref name="mustSolve"/>, a triangle has no area or a part of the mesh no tagged vertex; the message
        /// names the first vertex or triangle at fault. <see cref="BuildRobust(double[], int[], int[], bool)"/> takes
        /// triangles without area.</exception>
        /// <exception cref="SingularSystemException">With <paramref name="mustSolve"/>: the factorisation
        /// failed, or rounding leaves nothing of a field.</exception>
        /// <exception cref="InsufficientMemoryException">The system would take more memory than the machine has free, or
        /// more than the library can index; the message has the figures.</exception>
        /// <exception cref="DllNotFoundException">The native library is missing; the message says where it was
        /// looked for.</exception>
        public static MeshSystem Build(double[] vertices, int[] triangles, int[] tags, bool mustSolve = true)
        {
            Ensure.NotNull(vertices, triangles, tags);
            fixed (double* v = vertices)
            fixed (int* t = triangles, g = tags)
            {
                return Build(new TaggedMesh(v, vertices.Length, t, triangles.Length, g, tags.Length), mustSolve,
                    robust: false);
            }
        }

        /// <summary>Builds a system whose fields stay within the range of the prescribed values, whatever its
        /// triangles look like: obtuse, slivers, without area, three or more at an edge, oriented anyhow.</summary>
        /// <remarks>Its matrix comes from a better triangulation of the same surface between the same vertices; where
        /// the one that <c>Build</c> makes is good already, it is that one. Everything else is that of
        /// <c>Build</c>.</remarks>
        /// <param name="vertices">Coordinates x, y, z of each vertex; every vertex lies in a triangle.</param>
        /// <param name="triangles">Three vertex numbers per triangle, from 0.</param>
        /// <param name="tags">One tag per vertex: 1, 2 and 3 mean that its value will be prescribed, any other
        /// number that it is free.</param>
        /// <param name="mustSolve">True: throw unless every solve will be well posed.</param>
        /// <returns>The system, to be disposed.</returns>
        /// <exception cref="ArgumentNullException">An array is null.</exception>
        /// <exception cref="ArgumentException">A length, index or coordinate is wrong, or, with
        /// <paramref name="mustSolve"/>, a part of the mesh has no tagged vertex; the message names the first vertex
        /// or triangle at fault.</exception>
        /// <exception cref="SingularSystemException">With <paramref name="mustSolve"/>: the factorisation
        /// failed.</exception>
        /// <exception cref="QelmException">The construction did not come to an end.</exception>
        /// <exception cref="InsufficientMemoryException">The system would take more memory than the machine has free, or
        /// more than the library can index; the message has the figures.</exception>
        /// <exception cref="DllNotFoundException">The native library is missing; the message says where it was
        /// looked for.</exception>
        public static MeshSystem BuildRobust(double[] vertices, int[] triangles, int[] tags, bool mustSolve = true)
        {
            Ensure.NotNull(vertices, triangles, tags);
            fixed (double* v = vertices)
            fixed (int* t = triangles, g = tags)
            {
                return Build(new TaggedMesh(v, vertices.Length, t, triangles.Length, g, tags.Length), mustSolve,
                    robust: true);
            }
        }

        /// <summary>
        /// Makes a second system that shares mesh and factorisation with this one, at the cost of a few arrays. Each
        /// is disposed on its own; what they share goes with the last.
        /// </summary>
        /// <returns>The duplicate, to be disposed.</returns>
        /// <exception cref="ObjectDisposedException">The system is disposed.</exception>
        public MeshSystem Duplicate()
        {
            MeshSystemHandle copy;
            NativeMethods.dupl(Live(), out copy);
            return new MeshSystem(copy, order, TriangleCount, defect);
        }

        /// <summary>Releases the native system. Doing so again does nothing.</summary>
        public void Dispose()
        {
            handle.Dispose();
        }

        private static MeshSystem Build(TaggedMesh mesh, bool mustSolve, bool robust)
        {
            Ensure.Elements(mesh);
            string blamed;
            string defect = Solvability.FirstDefect(mesh, robust, out blamed);
            if (mustSolve && defect != null)
            {
                throw new ArgumentException(defect, blamed);
            }
            NativeLibrary.Require();

            int status;
            MeshSystemHandle handle;
            QelmPrediction prediction;
            long limit = MachineMemory.LimitFor(mesh.VertexCount);
            NativeMethods.qelmctorLimitedTagged(mesh.VertexCount, mesh.Vertices, mesh.TriangleCount, mesh.Triangles,
                mesh.Tags, robust ? 1 : 0, limit, &prediction, null, &status, out handle);
            if ((QelmStatus)status == QelmStatus.TooLarge)
            {
                throw new InsufficientMemoryException(new Prediction(prediction).Refusal(limit));
            }
            QelmException.ThrowUnlessOk(status);
            var system = new MeshSystem(handle, new VertexOrder(mesh.Tags, mesh.VertexCount), mesh.TriangleCount,
                defect);
            if (mustSolve)
            {
                system.DisposeUnlessSolvable();
            }
            return system;
        }

        private MeshSystemHandle Live()
        {
            if (handle.IsClosed)
            {
                throw new ObjectDisposedException("MeshSystem");
            }
            return handle;
        }
    }
}

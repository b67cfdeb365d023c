using System;

namespace Qelm
{
    public sealed unsafe partial class MeshSystem
    {
        /// <summary>
        /// The raw segment export, for callers that know it from C. It does not give the level curves of the mesh as
        /// it was built: for those use <c>Curves</c>.
        /// </summary>
        /// <remarks>
        /// The export reads the system's packed coordinates and triangles as if they were stored column by column,
        /// with as many triangle rows as there are vertices: corner k of row t is element t + k n of
        /// <see cref="SystemTriangles()"/>, coordinate c of vertex v is element v + c n of
        /// <see cref="SystemVertices"/>. This is how the C interface is defined and is kept for callers that arrange
        /// their data so. Segments are not joined and not labelled with their level; a level that meets a vertex or
        /// an edge gives segments without length or points with NaN.
        /// </remarks>
        /// <param name="field">One value per vertex, input order; rearranged into system order for the export.</param>
        /// <param name="levels">The levels, in any order.</param>
        /// <returns>The segments.</returns>
        /// <exception cref="ArgumentNullException">An array is null.</exception>
        /// <exception cref="ArgumentException">The length is wrong.</exception>
        /// <exception cref="ObjectDisposedException">The system is disposed.</exception>
        public SegmentTable IsolineSegments(double[] field, params double[] levels)
        {
            Ensure.NotNull(field, "field");
            Ensure.NotNull(levels, "levels");
            Ensure.Length(field.Length, VertexCount, "field");
            fixed (double* s = ToSystemOrder(field), l = levels)
            {
                return IsolineSegments(s, l, levels.Length);
            }
        }

        private SegmentTable IsolineSegments(double* systemField, double* levels, int levelCount)
        {
            IsoPointMatrix* points = null;
            IsoEdgeMatrix* edges = null;
            NativeMethods.qelisoline(Live(), systemField, levelCount, levels, &points, &edges);
            try
            {
                return new SegmentTable(points, edges);
            }
            finally
            {
                NativeMethods.qelfreeisoline(points, edges);
            }
        }
    }
}

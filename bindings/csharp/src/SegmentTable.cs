using System;
using System.Runtime.InteropServices;

namespace Qelm
{
    /// <summary>Straight segments, each with two points of its own. See <c>MeshSystem.IsolineSegments</c>.</summary>
    public sealed unsafe class SegmentTable
    {
        private readonly double[] points;
        private readonly int[] edges;

        internal SegmentTable(IsoPointMatrix* pointTable, IsoEdgeMatrix* edgeTable)
        {
            PointCount = checked((int)pointTable->rows);
            Count = checked((int)edgeTable->rows);
            points = new double[checked(3 * PointCount)];
            edges = new int[checked(2 * Count)];
            if (Count > 0)
            {
                Marshal.Copy((IntPtr)pointTable->data, points, 0, points.Length);
                Marshal.Copy((IntPtr)edgeTable->data, edges, 0, edges.Length);
            }
        }

        /// <summary>Number of segments.</summary>
        public int Count { get; private set; }

        /// <summary>Number of points: two per segment, none shared.</summary>
        public int PointCount { get; private set; }

        /// <summary>One end of a segment.</summary>
        /// <param name="segment">0 .. Count - 1.</param>
        /// <returns>The point.</returns>
        /// <exception cref="ArgumentOutOfRangeException">There is no such segment.</exception>
        public Point3 Start(int segment)
        {
            return Point(edges[Checked(segment)]);
        }

        /// <summary>The other end of a segment.</summary>
        /// <param name="segment">0 .. Count - 1.</param>
        /// <returns>The point.</returns>
        /// <exception cref="ArgumentOutOfRangeException">There is no such segment.</exception>
        public Point3 End(int segment)
        {
            return Point(edges[Checked(segment) + Count]);
        }

        // Both tables are stored column by column.
        private Point3 Point(int row)
        {
            return new Point3(points[row], points[row + PointCount], points[row + 2 * PointCount]);
        }

        private int Checked(int segment)
        {
            if (segment < 0 || segment >= Count)
            {
                throw new ArgumentOutOfRangeException("segment", segment, "there are " + Text.Of(Count) + " segments");
            }
            return segment;
        }
    }
}

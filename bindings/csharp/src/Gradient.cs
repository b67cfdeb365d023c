using System.Collections.Generic;

namespace Qelm
{
    /// <summary>The gradients of a field, in its unit by the unit of the vertices.</summary>
    public sealed class Gradient
    {
        internal Gradient(Point3[] ofTriangles, Point3[] ofVertices)
        {
            OfTriangles = ofTriangles;
            OfVertices = ofVertices;
        }

        /// <summary>The gradient on each triangle, where the field is linear: in its plane. NaN on a triangle without
        /// area.</summary>
        public IReadOnlyList<Point3> OfTriangles { get; private set; }

        /// <summary>The mean over each vertex's triangles, by their areas, input order. NaN where none of them has an
        /// area.</summary>
        public IReadOnlyList<Point3> OfVertices { get; private set; }
    }
}

using System;

namespace Qelm
{
    public sealed unsafe partial class MeshSystem
    {
        // A triangle lower than so many roundings of its largest coordinate cannot be told from one without area.
        private const double FlatRoundings = 8;
        private const double Epsilon = 1.0 / (1L << 52);

        /// <summary>In which direction along the surface a field grows most, and by how much on a unit of length.</summary>
        /// <remarks>
        /// On a triangle (a, b, c) with the normal N = (b - a) x (c - a) the field's linear interpolation has the
        /// gradient N x ((u_b - u_a) (a - c) + (u_c - u_a) (b - a)) / |N|^2, as the command-line tool's
        /// "qelm gradient" computes it.
        /// </remarks>
        /// <param name="field">One value per vertex, input order; a triangle with a NaN corner has no gradient.</param>
        /// <returns>A vector for each triangle and for each vertex.</returns>
        /// <exception cref="ArgumentNullException">The array is null.</exception>
        /// <exception cref="ArgumentException">The length is wrong.</exception>
        /// <exception cref="ObjectDisposedException">The system is disposed.</exception>
        public Gradient Gradient(double[] field)
        {
            double[] values = ToSystemOrder(field);
            double[] vertices = SystemVertices();
            int[] triangles = SystemTriangles();
            var ofTriangles = new Point3[TriangleCount];
            double[][] sums = { new double[VertexCount], new double[VertexCount], new double[VertexCount] };
            var weights = new double[VertexCount];
            for (int t = 0; t < ofTriangles.Length; ++t)
            {
                int a = triangles[3 * t];
                int b = triangles[3 * t + 1];
                int c = triangles[3 * t + 2];
                double twiceArea;
                Point3 vector = GradientOn(PointAt(vertices, a), PointAt(vertices, b), PointAt(vertices, c),
                    values[b] - values[a], values[c] - values[a], out twiceArea);
                ofTriangles[t] = vector;
                if (double.IsNaN(vector.X))
                {
                    continue;
                }
                foreach (int s in new[] { a, b, c })
                {
                    weights[s] += twiceArea;
                    sums[0][s] += twiceArea * vector.X;
                    sums[1][s] += twiceArea * vector.Y;
                    sums[2][s] += twiceArea * vector.Z;
                }
            }
            return new Gradient(ofTriangles, Means(sums, weights));
        }

        private static Point3 GradientOn(Point3 a, Point3 b, Point3 c, double toB, double toC, out double twiceArea)
        {
            Point3 ab = Difference(b, a);
            Point3 ca = Difference(a, c);
            Point3 normal = Cross(ab, Difference(c, a));
            twiceArea = Length(normal);
            double longest = Math.Max(Length(ab), Math.Max(Length(ca), Length(Difference(c, b))));
            double largest = Math.Max(Largest(a), Math.Max(Largest(b), Largest(c)));
            if (!(twiceArea > FlatRoundings * Epsilon * largest * longest) || double.IsInfinity(twiceArea))
            {
                return new Point3(double.NaN, double.NaN, double.NaN);
            }
            Point3 along = new Point3(toB * ca.X + toC * ab.X, toB * ca.Y + toC * ab.Y, toB * ca.Z + toC * ab.Z);
            Point3 vector = Cross(normal, along);
            // Two divisions, not one by the square, which may underflow; and no negative zero.
            return new Point3(vector.X / twiceArea / twiceArea + 0.0, vector.Y / twiceArea / twiceArea + 0.0,
                vector.Z / twiceArea / twiceArea + 0.0);
        }

        private Point3[] Means(double[][] sums, double[] weights)
        {
            for (int s = 0; s < weights.Length; ++s)
            {
                foreach (double[] sum in sums)
                {
                    sum[s] = weights[s] > 0 ? sum[s] / weights[s] : double.NaN;
                }
            }
            double[] x = ToInputOrder(sums[0]);
            double[] y = ToInputOrder(sums[1]);
            double[] z = ToInputOrder(sums[2]);
            var means = new Point3[weights.Length];
            for (int i = 0; i < means.Length; ++i)
            {
                means[i] = new Point3(x[i], y[i], z[i]);
            }
            return means;
        }

        private static Point3 PointAt(double[] vertices, int s)
        {
            return new Point3(vertices[3 * s], vertices[3 * s + 1], vertices[3 * s + 2]);
        }

        private static Point3 Difference(Point3 p, Point3 q)
        {
            return new Point3(p.X - q.X, p.Y - q.Y, p.Z - q.Z);
        }

        private static Point3 Cross(Point3 p, Point3 q)
        {
            return new Point3(p.Y * q.Z - p.Z * q.Y, p.Z * q.X - p.X * q.Z, p.X * q.Y - p.Y * q.X);
        }

        private static double Length(Point3 p)
        {
            return Math.Sqrt(p.X * p.X + p.Y * p.Y + p.Z * p.Z);
        }

        private static double Largest(Point3 p)
        {
            return Math.Max(Math.Abs(p.X), Math.Max(Math.Abs(p.Y), Math.Abs(p.Z)));
        }
    }
}

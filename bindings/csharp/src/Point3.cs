using System;

namespace Qelm
{
    /// <summary>A point in space, in the unit of the mesh.</summary>
    public struct Point3 : IEquatable<Point3>
    {
        /// <summary>Makes a point.</summary>
        /// <param name="x">First coordinate.</param>
        /// <param name="y">Second coordinate.</param>
        /// <param name="z">Third coordinate.</param>
        public Point3(double x, double y, double z)
        {
            X = x;
            Y = y;
            Z = z;
        }

        /// <summary>First coordinate.</summary>
        public double X { get; private set; }

        /// <summary>Second coordinate.</summary>
        public double Y { get; private set; }

        /// <summary>Third coordinate.</summary>
        public double Z { get; private set; }

        /// <summary>The length of the straight line to another point.</summary>
        /// <param name="other">The other point.</param>
        /// <returns>The distance.</returns>
        public double DistanceTo(Point3 other)
        {
            double x = other.X - X;
            double y = other.Y - Y;
            double z = other.Z - Z;
            return Math.Sqrt(x * x + y * y + z * z);
        }

        /// <summary>Whether all three coordinates are equal; NaN equals itself here.</summary>
        /// <param name="other">The other point.</param>
        /// <returns>True when they are.</returns>
        public bool Equals(Point3 other)
        {
            return X.Equals(other.X) && Y.Equals(other.Y) && Z.Equals(other.Z);
        }

        /// <inheritdoc/>
        public override bool Equals(object obj)
        {
            return obj is Point3 && Equals((Point3)obj);
        }

        /// <inheritdoc/>
        public override int GetHashCode()
        {
            return (X.GetHashCode() * 31 + Y.GetHashCode()) * 31 + Z.GetHashCode();
        }

        /// <inheritdoc/>
        public override string ToString()
        {
            return "(" + Text.Of(X) + ", " + Text.Of(Y) + ", " + Text.Of(Z) + ")";
        }
    }
}

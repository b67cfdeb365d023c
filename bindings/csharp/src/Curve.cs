using System.Collections.Generic;

namespace Qelm
{
    /// <summary>One level curve: an ordered polyline on the mesh.</summary>
    public sealed class Curve
    {
        private readonly Point3[] points;

        internal Curve(double level, int levelIndex, bool isClosed, Point3[] points)
        {
            Level = level;
            LevelIndex = levelIndex;
            IsClosed = isClosed;
            this.points = points;
        }

        /// <summary>The level that the curve lies on.</summary>
        public double Level { get; private set; }

        /// <summary>Where that level stands among those that were asked for.</summary>
        public int LevelIndex { get; private set; }

        /// <summary>True: the curve leads on from its last point to its first, which is not repeated.</summary>
        public bool IsClosed { get; private set; }

        /// <summary>The points in order; higher values lie at the left.</summary>
        public IReadOnlyList<Point3> Points
        {
            get { return points; }
        }

        /// <summary>"level 0.5: closed, 36 points".</summary>
        public override string ToString()
        {
            return "level " + Text.Of(Level) + ": " + (IsClosed ? "closed, " : "open, ") + Text.Of(points.Length)
                + " points";
        }

        /// <summary>The length of the polyline, with the closing segment of a closed one.</summary>
        public double Length
        {
            get
            {
                double sum = 0;
                for (int k = 1; k < points.Length; ++k)
                {
                    sum += points[k - 1].DistanceTo(points[k]);
                }
                return IsClosed ? sum + points[points.Length - 1].DistanceTo(points[0]) : sum;
            }
        }
    }
}

using System.Collections.Generic;
using System.Globalization;
using System.IO;
using System.Linq;
using Qelm;

namespace RimCurves
{
    /// <summary>Writes curves as an OBJ file of polylines, one group per level.</summary>
    internal static class ObjCurves
    {
        internal static void Write(string path, IReadOnlyList<Curve> curves)
        {
            using (var writer = new StreamWriter(path))
            {
                writer.NewLine = "\n";
                int first = 1;
                foreach (Curve curve in curves)
                {
                    writer.WriteLine("g level_" + Text(curve.Level));
                    foreach (Point3 point in curve.Points)
                    {
                        writer.WriteLine("v " + Text(point.X) + " " + Text(point.Y) + " " + Text(point.Z));
                    }
                    IEnumerable<int> line = Enumerable.Range(first, curve.Points.Count);
                    if (curve.IsClosed)
                    {
                        line = line.Concat(new[] { first });
                    }
                    writer.WriteLine("l " + string.Join(" ", line));
                    first += curve.Points.Count;
                }
            }
        }

        private static string Text(double number)
        {
            return number.ToString("R", CultureInfo.InvariantCulture);
        }
    }
}

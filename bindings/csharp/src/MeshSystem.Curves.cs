using System;
using System.Collections.Generic;

namespace Qelm
{
    public sealed unsafe partial class MeshSystem
    {
        /// <summary>The level curves of a field: joined, ordered polylines, each with its level.</summary>
        /// <remarks>
        /// A value at or above a level counts as above it, everywhere alike, so that curves are closed or end on the
        /// mesh's boundary also where a level passes through vertices, along edges or over flat regions. They end as
        /// well at edges of more than two triangles and at triangles with a NaN corner, which are holes. Higher values
        /// lie at the left, seen from where the triangles are counter-clockwise. The order of the curves and of their
        /// points depends on neither the numbering of the vertices nor the order of the triangles.
        /// </remarks>
        /// <param name="field">One value per vertex, input order; NaN makes holes.</param>
        /// <param name="levels">The levels, in any order.</param>
        /// <returns>The curves, by level in the order given.</returns>
        /// <exception cref="ArgumentNullException">An array is null.</exception>
        /// <exception cref="ArgumentException">The length is wrong, or a level is not finite.</exception>
        /// <exception cref="ObjectDisposedException">The system is disposed.</exception>
        public IReadOnlyList<Curve> Curves(double[] field, params double[] levels)
        {
            Ensure.NotNull(field, "field");
            Ensure.NotNull(levels, "levels");
            fixed (double* f = field, l = levels)
            {
                return Curves(f, field.Length, l, levels.Length);
            }
        }

        private Curve[] Curves(double* field, int count, double* levels, int levelCount)
        {
            Ensure.Length(count, VertexCount, "field");
            Ensure.FiniteNumbers(levels, levelCount, "level", "levels");
            QelmCurves* record = null;
            try
            {
                int status;
                NativeMethods.qelmcurvesTagged(Live(), field, levelCount, levels, &record, &status);
                QelmException.ThrowUnlessOk(status);
                return Copy(record, levels);
            }
            finally
            {
                NativeMethods.qelmfreecurves(record);
            }
        }

        private static Curve[] Copy(QelmCurves* record, double* levels)
        {
            var curves = new Curve[checked((int)record->curveCount)];
            for (int c = 0; c < curves.Length; ++c)
            {
                int level = record->levels[c];
                curves[c] = new Curve(levels[level], level, record->closed[c] != 0,
                    Points(record->points, record->starts[c], record->starts[c + 1]));
            }
            return curves;
        }

        private static Point3[] Points(double* packed, long begin, long end)
        {
            var points = new Point3[checked((int)(end - begin))];
            double* at = packed + 3 * begin;
            for (int k = 0; k < points.Length; ++k, at += 3)
            {
                points[k] = new Point3(at[0], at[1], at[2]);
            }
            return points;
        }
    }
}

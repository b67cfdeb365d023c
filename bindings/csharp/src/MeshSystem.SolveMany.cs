using System;
using System.Runtime.InteropServices;

namespace Qelm
{
    public sealed unsafe partial class MeshSystem
    {
        /// <summary>
        /// How many fields go into one native call. Many times what one pass through the factor takes, so that
        /// nothing is lost, and few enough for the packed copies to stay small beside the factor.
        /// </summary>
        private const int FieldsPerCall = 64;

        /// <summary>
        /// Solves for many sets of prescribed values: the same bits as one solve each, and much faster, since several
        /// fields go through the factorisation together.
        /// </summary>
        /// <param name="values">For each field, one value per vertex; read at tagged vertices only.</param>
        /// <returns>The fields, in the same order.</returns>
        /// <exception cref="ArgumentNullException">The array is null.</exception>
        /// <exception cref="ArgumentException">An inner array is null or has the wrong length, or the value of a tagged
        /// vertex is not finite.</exception>
        /// <exception cref="SingularSystemException">The system cannot be solved.</exception>
        /// <exception cref="ObjectDisposedException">The system is disposed.</exception>
        public double[][] SolveMany(double[][] values)
        {
            EnsureFields(values, "values");
            return SolveFields(values, null);
        }

        /// <summary>Solves for many sets of prescribed values, each with a load.</summary>
        /// <param name="values">For each field, one value per vertex; read at tagged vertices only.</param>
        /// <param name="loads">For each field, one number per vertex; read at free vertices only.</param>
        /// <returns>The fields, in the same order.</returns>
        /// <exception cref="ArgumentNullException">An array is null.</exception>
        /// <exception cref="ArgumentException">There are not as many loads as values, an inner array is null or has the
        /// wrong length, or a number that is read is not finite.</exception>
        /// <exception cref="SingularSystemException">The system cannot be solved.</exception>
        /// <exception cref="ObjectDisposedException">The system is disposed.</exception>
        public double[][] SolveMany(double[][] values, double[][] loads)
        {
            EnsureFields(values, "values");
            EnsureFields(loads, "loads");
            if (loads.Length != values.Length)
            {
                throw new ArgumentException("there are " + Text.Of(loads.Length) + " for " + Text.Of(values.Length)
                    + " sets of values", "loads");
            }
            return SolveFields(values, loads);
        }

        /// <summary>Null loads mean none.</summary>
        private double[][] SolveFields(double[][] values, double[][] loads)
        {
            Live();
            ThrowUnlessSolvable();
            var results = new double[values.Length][];
            int block = Math.Max(1, Math.Min(FieldsPerCall, int.MaxValue / VertexCount));
            for (int first = 0; first < results.Length; first += block)
            {
                SolveBlock(values, loads, results, first, Math.Min(block, results.Length - first));
            }
            return results;
        }

        private void SolveBlock(double[][] values, double[][] loads, double[][] results, int first, int count)
        {
            fixed (double* packed = Packed(values, first, count), packedLoads = Packed(loads, first, count))
            {
                SolveChecked(count, packed, packedLoads, packed, first);
                for (int k = 0; k < count; ++k)
                {
                    results[first + k] = new double[VertexCount];
                    Marshal.Copy((IntPtr)(packed + (long)k * VertexCount), results[first + k], 0, VertexCount);
                }
            }
        }

        private double[] Packed(double[][] fields, int first, int count)
        {
            if (fields == null)
            {
                return null;
            }
            var packed = new double[count * VertexCount];
            for (int k = 0; k < count; ++k)
            {
                Array.Copy(fields[first + k], 0, packed, k * VertexCount, VertexCount);
            }
            return packed;
        }

        /// <summary>Each field is there and has the right length.</summary>
        private void EnsureFields(double[][] fields, string name)
        {
            Ensure.NotNull(fields, name);
            for (int k = 0; k < fields.Length; ++k)
            {
                if (fields[k] == null)
                {
                    throw new ArgumentException("field " + Text.Of(k) + " is null", name);
                }
                if (fields[k].Length != VertexCount)
                {
                    throw new ArgumentException("field " + Text.Of(k) + ": length is " + Text.Of(fields[k].Length)
                        + ", must be " + Text.Of(VertexCount) + " (one per vertex)", name);
                }
            }
        }
    }
}

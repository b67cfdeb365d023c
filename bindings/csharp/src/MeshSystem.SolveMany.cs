using System;

namespace Qelm
{
    public sealed unsafe partial class MeshSystem
    {
        /// <summary>Solves for many sets of prescribed values.</summary>
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
            return Array.ConvertAll(values, field => Solve(field));
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
            var results = new double[values.Length][];
            for (int k = 0; k < results.Length; ++k)
            {
                results[k] = Solve(values[k], loads[k]);
            }
            return results;
        }

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

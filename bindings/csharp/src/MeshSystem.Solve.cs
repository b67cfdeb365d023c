using System;

namespace Qelm
{
    public sealed unsafe partial class MeshSystem
    {
        /// <summary>Solves for one value per vertex, smooth between the prescribed ones.</summary>
        /// <param name="values">One value per vertex; read at tagged vertices only.</param>
        /// <returns>The field, one value per vertex. Tagged vertices have their own value, bit for bit.</returns>
        /// <exception cref="ArgumentNullException">The array is null.</exception>
        /// <exception cref="ArgumentException">The length is wrong, or the value of a tagged vertex is not
        /// finite.</exception>
        /// <exception cref="SingularSystemException">The system cannot be solved.</exception>
        /// <exception cref="ObjectDisposedException">The system is disposed.</exception>
        public double[] Solve(double[] values)
        {
            var result = new double[VertexCount];
            SolveInto(values, result);
            return result;
        }

        /// <summary>Solves with a load as well: stiffness times field plus load is zero at each free vertex.</summary>
        /// <param name="values">One value per vertex; read at tagged vertices only.</param>
        /// <param name="load">One number per vertex, read at free vertices only and taken as it is: for the Poisson
        /// equation the integral of the right-hand side times the vertex's hat function.</param>
        /// <returns>The field, one value per vertex.</returns>
        /// <exception cref="ArgumentNullException">An array is null.</exception>
        /// <exception cref="ArgumentException">A length is wrong, or a number that is read is not finite.</exception>
        /// <exception cref="SingularSystemException">The system cannot be solved.</exception>
        /// <exception cref="ObjectDisposedException">The system is disposed.</exception>
        public double[] Solve(double[] values, double[] load)
        {
            var result = new double[VertexCount];
            SolveInto(values, load, result);
            return result;
        }

        /// <summary>As <see cref="Solve(double[])"/>, into an array of the caller's.</summary>
        /// <param name="values">One value per vertex; read at tagged vertices only.</param>
        /// <param name="result">Receives the field; may be the same array as <paramref name="values"/>.</param>
        public void SolveInto(double[] values, double[] result)
        {
            Ensure.NotNull(values, "values");
            Ensure.NotNull(result, "result");
            fixed (double* v = values, r = result)
            {
                SolveInto(v, values.Length, null, r, result.Length);
            }
        }

        /// <summary>As <see cref="Solve(double[], double[])"/>, into an array of the caller's.</summary>
        /// <param name="values">One value per vertex; read at tagged vertices only.</param>
        /// <param name="load">One number per vertex; read at free vertices only.</param>
        /// <param name="result">Receives the field; any of the three arrays may be the same one.</param>
        public void SolveInto(double[] values, double[] load, double[] result)
        {
            Ensure.NotNull(values, "values");
            Ensure.NotNull(load, "load");
            Ensure.NotNull(result, "result");
            Ensure.Length(load.Length, VertexCount, "load");
            fixed (double* v = values, l = load, r = result)
            {
                SolveInto(v, values.Length, l, r, result.Length);
            }
        }

        /// <summary>A null load means none; another has its length checked already.</summary>
        private void SolveInto(double* values, int valueCount, double* load, double* result, int resultCount)
        {
            Ensure.Length(valueCount, VertexCount, "values");
            Ensure.Length(resultCount, VertexCount, "result");
            SolveChecked(1, values, load, result, -1);
        }

        // Solves for fields that lie one after another; the number of the first is for messages, -1 for a single one.
        // The library looks at the numbers that it reads, before it writes any, and at the fields.
        private void SolveChecked(int count, double* values, double* loads, double* results, int firstField)
        {
            ThrowUnlessSolvable();
            long first;
            int status;
            NativeMethods.qelmsolveCheckedTagged(Live(), count, values, loads, results, &first, &status);
            if ((QelmStatus)status != QelmStatus.Ok)
            {
                Refuse((QelmStatus)status, first, values, loads, results, firstField);
            }
        }

        // Throws what the status means; `first` is the index of the first number that is wrong.
        private void Refuse(QelmStatus status, long first, double* values, double* loads, double* results,
            int firstField)
        {
            bool single = firstField < 0;
            string field = Text.Of(firstField + (int)(first / VertexCount));
            string vertex = "vertex " + Text.Of((int)(first % VertexCount));
            string element = single ? vertex : "field " + field + ", " + vertex;
            switch (status)
            {
                case QelmStatus.ValueNotFinite:
                    throw new ArgumentException(element + ": value is " + Text.Of(values[first]), "values");
                case QelmStatus.LoadNotFinite:
                    throw new ArgumentException(element + ": value is " + Text.Of(loads[first]),
                        single ? "load" : "loads");
                case QelmStatus.FieldNotFinite:
                    // A nearly singular system passes the factorisation and overflows in the solve.
                    throw new SingularSystemException(FactorisationInfo, (single ? "The field" : "Field " + field)
                        + " is " + Text.Of(results[first]) + " at " + vertex
                        + ": the equations have no finite solution there.");
                default:
                    QelmException.ThrowUnlessOk((int)status);
                    break;
            }
        }

        private void ThrowUnlessSolvable()
        {
            if (defect != null)
            {
                throw new SingularSystemException(FactorisationInfo, "The system cannot be solved: " + defect + ".");
            }
            if (FactorisationInfo != FactorisationInfo.Success)
            {
                throw new SingularSystemException(FactorisationInfo, "The factorisation ended with "
                    + FactorisationInfo + ": some free vertices are not tied to a prescribed one.");
            }
        }

        /// <summary>
        /// Measures what rounding does to fields on this mesh: solves for the field that is 1 everywhere and returns
        /// its largest deviation, so an error as a part of a field's largest value. 1e-12 is usual; very thin
        /// triangles, and meshes far from the origin, have more.
        /// </summary>
        /// <returns>The error, 0 or more.</returns>
        /// <exception cref="SingularSystemException">The equations cannot be solved.</exception>
        /// <exception cref="ObjectDisposedException">The system is disposed.</exception>
        public double MeasureError()
        {
            var ones = new double[VertexCount];
            for (int i = 0; i < ones.Length; ++i)
            {
                ones[i] = 1;
            }
            double error = 0;
            foreach (double value in Solve(ones))
            {
                error = Math.Max(error, Math.Abs(value - 1));
            }
            return error;
        }

        /// <summary>An error of one digit and more leaves no field.</summary>
        internal const double NothingLeft = 0.1;

        /// <summary>What <see cref="MeasureError"/> would say of a mesh; infinite where it cannot be solved on.</summary>
        internal static double ErrorOf(TaggedMesh mesh)
        {
            try
            {
                using (MeshSystem system = Build(mesh, mustSolve: false, robust: false))
                {
                    return system.MeasureError();
                }
            }
            catch (SingularSystemException)
            {
                return double.PositiveInfinity;
            }
        }

        private void DisposeUnlessSolvable()
        {
            try
            {
                ThrowUnlessSolvable();
                if (!(MeasureError() < NothingLeft))
                {
                    throw new SingularSystemException(FactorisationInfo, "Rounding leaves nothing of a field on this "
                        + "mesh: its triangles are too thin, or too small for their distance from the origin.");
                }
            }
            catch (SingularSystemException)
            {
                Dispose();
                throw;
            }
        }
    }
}

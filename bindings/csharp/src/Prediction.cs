using System.Globalization;

namespace Qelm
{
    /// <summary>What constructing a system takes.</summary>
    public sealed class Prediction
    {
        internal Prediction(QelmPrediction native)
        {
            FactorEntries = native.factorEntries;
            SystemBytes = native.handleBytes;
            PeakBytes = native.peakBytes;
            Multiplications = native.multiplications;
        }

        /// <summary>Entries of the factor below its diagonal; the library can index 2,147,483,647.</summary>
        public long FactorEntries { get; private set; }

        /// <summary>Memory that the system keeps.</summary>
        public long SystemBytes { get; private set; }

        /// <summary>The most memory that is taken at once while it is built.</summary>
        public long PeakBytes { get; private set; }

        /// <summary>Of the factorisation, whose time is most of the whole: one to ten thousand million a
        /// second.</summary>
        public double Multiplications { get; private set; }

        /// <summary>The figures in one line.</summary>
        public override string ToString()
        {
            return string.Format(CultureInfo.InvariantCulture, "factor of {0} entries, {1:0.##E+0} multiplications, {2} at the peak, {3} kept", FactorEntries,
                Multiplications, Gigabytes(PeakBytes), Gigabytes(SystemBytes));
        }

        /// <summary>Why it cannot be built within the limit, with a cure.</summary>
        internal string Refusal(long limit)
        {
            string what = FactorEntries > int.MaxValue
                ? string.Format(CultureInfo.InvariantCulture,
                    "its factor would need {0} entries, more than the library can index ({1})", FactorEntries, int.MaxValue)
                : string.Format(CultureInfo.InvariantCulture,
                    "it would take {0} of memory, and {1} are free; its factor has {2} entries", Gigabytes(PeakBytes),
                    Gigabytes(limit), FactorEntries);
            return "The system is too large: " + what + ". A surface takes one or two kilobytes a vertex; more means "
                + "that triangles join vertices that lie far apart. Prescribe more vertices, or divide the mesh.";
        }

        private static string Gigabytes(long bytes)
        {
            return (bytes / 1e9).ToString("0.###", CultureInfo.InvariantCulture) + " GB";
        }
    }
}

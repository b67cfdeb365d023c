using System.Globalization;

namespace Qelm
{
    /// <summary>Numbers in messages, the same in every culture.</summary>
    internal static class Text
    {
        internal static string Of(int number)
        {
            return number.ToString(CultureInfo.InvariantCulture);
        }

        internal static string Of(long number)
        {
            return number.ToString(CultureInfo.InvariantCulture);
        }

        internal static string Of(double number)
        {
            return number.ToString("R", CultureInfo.InvariantCulture);
        }

        /// <summary>One digit and the power of ten: 4e-05.</summary>
        internal static string Rounded(double number)
        {
            return number.ToString("0e-00", CultureInfo.InvariantCulture);
        }
    }
}

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

        internal static string Of(double number)
        {
            return number.ToString("R", CultureInfo.InvariantCulture);
        }
    }
}

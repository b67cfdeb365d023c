using System;

namespace Qelm
{
    /// <summary>Carries an integer as a point on the upper half of the unit sphere.</summary>
    public static unsafe class SphereCodec
    {
        /// <summary>The smallest value that can be carried.</summary>
        public const int MinValue = -1;

        /// <summary>The largest value that can be carried. 65535 has the same two bytes as -1.</summary>
        public const int MaxValue = 65534;

        /// <summary>The point for a value.</summary>
        /// <param name="value">-1 .. 65534.</param>
        /// <param name="x">First coordinate, from the low byte.</param>
        /// <param name="y">Second coordinate, from the high byte.</param>
        /// <param name="z">Third coordinate, which makes the length 1.</param>
        /// <exception cref="ArgumentOutOfRangeException">The value cannot be carried.</exception>
        public static void Encode(int value, out float x, out float y, out float z)
        {
            if (value < MinValue || value > MaxValue)
            {
                throw new ArgumentOutOfRangeException("value", value, "must be in -1 .. 65534");
            }
            NativeLibrary.Require();
            float px;
            float py;
            float pz;
            NativeMethods.encode_integer_to_sphere(value, &px, &py, &pz);
            x = px;
            y = py;
            z = pz;
        }

        /// <summary>The value of a point that <see cref="Encode"/> made, or of its reverse.</summary>
        /// <remarks>
        /// Every point decodes to something: the length is not looked at, a coordinate off the range reads as the byte
        /// 255, below the range as well as above it, and NaN as 0.
        /// </remarks>
        /// <param name="x">First coordinate.</param>
        /// <param name="y">Second coordinate.</param>
        /// <param name="z">Third coordinate; below 0, x and y are taken negated.</param>
        /// <returns>-1 .. 65534.</returns>
        public static int Decode(float x, float y, float z)
        {
            NativeLibrary.Require();
            return NativeMethods.decode_integer_from_sphere(x, y, z);
        }
    }
}

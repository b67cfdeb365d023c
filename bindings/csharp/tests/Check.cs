using System;
using NUnit.Framework;

namespace Qelm.Tests
{
    /// <summary>Checkers that name the worst or first index.</summary>
    internal static class Check
    {
        internal static void Close(double[] actual, double[] expected, double tolerance)
        {
            Assert.AreEqual(expected.Length, actual.Length, "length");
            int worst = 0;
            for (int i = 1; i < actual.Length; ++i)
            {
                // NaN is worse than anything, and stays the worst.
                if (!(Math.Abs(actual[i] - expected[i]) <= Math.Abs(actual[worst] - expected[worst])))
                {
                    worst = i;
                }
            }
            Assert.AreEqual(expected[worst], actual[worst], tolerance, "worst at index " + worst);
        }

        internal static void SameBits(double[] actual, double[] expected)
        {
            Assert.AreEqual(expected.Length, actual.Length, "length");
            for (int i = 0; i < actual.Length; ++i)
            {
                long a = BitConverter.DoubleToInt64Bits(actual[i]);
                long e = BitConverter.DoubleToInt64Bits(expected[i]);
                if (a != e)
                {
                    Assert.Fail("index " + i + ": " + a.ToString("x16") + ", expected " + e.ToString("x16"));
                }
            }
        }

        /// <summary>The call throws exactly this kind of exception for this argument, and says these words.</summary>
        internal static void Refuses<T>(string argument, string words, TestDelegate call)
            where T : ArgumentException
        {
            var error = Assert.Throws<T>(call);
            Assert.AreEqual(argument, error.ParamName);
            StringAssert.Contains(words, error.Message);
        }
    }
}

using System;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class SphereCodecTests
    {
        [Test]
        public void EveryValueSurvivesTheRoundTripAndSoDoesItsReverse()
        {
            for (int value = SphereCodec.MinValue; value <= SphereCodec.MaxValue; ++value)
            {
                float x, y, z;
                SphereCodec.Encode(value, out x, out y, out z);
                if (SphereCodec.Decode(x, y, z) != value || SphereCodec.Decode(-x, -y, -z) != value)
                {
                    Assert.Fail("value " + value);
                }
            }
        }

        [Test]
        public void ZeroStandsAtACorner()
        {
            float x, y, z;
            SphereCodec.Encode(0, out x, out y, out z);
            Assert.AreEqual(-0.5f, x);
            Assert.AreEqual(-0.5f, y);
            Assert.AreEqual((float)Math.Sqrt(0.5), z);
        }

        [TestCase(-2)]
        [TestCase(65535)]
        [TestCase(int.MinValue)]
        [TestCase(int.MaxValue)]
        public void ValuesOutOfRangeAreRefused(int value)
        {
            float x, y, z;
            Check.Refuses<ArgumentOutOfRangeException>("value", "-1 .. 65534",
                () => SphereCodec.Encode(value, out x, out y, out z));
        }

        [Test]
        public void CoordinatesBelowTheRangeReadAsTheLargestByte()
        {
            Assert.AreEqual(33023, SphereCodec.Decode(-0.6f, 0, 1));
        }

        [Test]
        public void NanReadsAsZero()
        {
            Assert.AreEqual(128 * 256, SphereCodec.Decode(float.NaN, 0, float.NaN));
        }
    }
}

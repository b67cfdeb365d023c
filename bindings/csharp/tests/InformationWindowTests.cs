using System;
using NUnit.Framework;

namespace Qelm.Tests
{
    [TestFixture]
    public class InformationWindowTests
    {
        [Test]
        public void OffWindowsBothMembersSayThatTheWindowIsNotSupported()
        {
            if (Environment.OSVersion.Platform == PlatformID.Win32NT)
            {
                Assert.Ignore("this is Windows");
            }
            Assert.Throws<PlatformNotSupportedException>(() => InformationWindow.Show(IntPtr.Zero, IntPtr.Zero));
            Assert.Throws<PlatformNotSupportedException>(() => Use(InformationWindow.Handle));
        }

        [Test]
        public void ResultsHaveTheNativeNumbers()
        {
            Assert.AreEqual(0, (int)InformationWindowResult.NotStarted);
            Assert.AreEqual(1, (int)InformationWindowResult.Started);
            Assert.AreEqual(2, (int)InformationWindowResult.AlreadyOpen);
            Assert.AreEqual(3, (int)InformationWindowResult.Suppressed);
        }

        private static void Use(IntPtr handle)
        {
        }
    }
}

using System;
using System.Globalization;
using System.IO;
using NUnit.Framework;

namespace Qelm.Tests
{
    /// <summary>Whether repeating something makes the process grow, native memory included.</summary>
    internal static class Memory
    {
        // What heaps grow by on their own; callers leak several times as much.
        private const long AllowedGrowth = 20 << 20;

        internal static void AssertNoGrowth(int times, Action action)
        {
            Repeat(action, Math.Max(500, times / 10));
            long before = ResidentBytes();
            Repeat(action, times);
            Assert.Less(ResidentBytes() - before, AllowedGrowth, "bytes grown in " + times + " repetitions");
        }

        private static void Repeat(Action action, int times)
        {
            for (int k = 0; k < times; ++k)
            {
                action();
            }
            GC.Collect();
            GC.WaitForPendingFinalizers();
        }

        private static long ResidentBytes()
        {
            string pages = File.ReadAllText("/proc/self/statm").Split(' ')[1];
            return long.Parse(pages, CultureInfo.InvariantCulture) * Environment.SystemPageSize;
        }
    }
}

using System;
using System.Globalization;
using System.IO;
using System.Runtime.InteropServices;

namespace Qelm
{
    /// <summary>What the machine has free.</summary>
    internal static class MachineMemory
    {
        /// <summary>Of a mesh with fewer vertices, even a full factor takes 24 MB at most; asking takes longer than
        /// the smallest are built.</summary>
        private const int WorthAsking = 2000;

        /// <summary>The bytes that building a system may take.</summary>
        internal static long LimitFor(int vertexCount)
        {
            return vertexCount < WorthAsking ? long.MaxValue : FreeBytes() ?? long.MaxValue;
        }

        /// <summary>Main memory that a program could take without others being swapped out; null if nobody
        /// says.</summary>
        internal static long? FreeBytes()
        {
            return NativeLibrary.IsWindows ? OfWindows() : OfLinux();
        }

        private static long? OfLinux()
        {
            const string name = "MemAvailable:";
            try
            {
                foreach (string line in File.ReadAllLines("/proc/meminfo"))
                {
                    if (line.StartsWith(name, StringComparison.Ordinal))
                    {
                        string number = line.Substring(name.Length).Replace("kB", "").Trim();
                        return 1024 * long.Parse(number, CultureInfo.InvariantCulture);
                    }
                }
            }
            catch (IOException)
            {
                // Not a Linux that tells.
            }
            return null;
        }

        private static long? OfWindows()
        {
            var status = new MemoryStatus { Length = (uint)Marshal.SizeOf(typeof(MemoryStatus)) };
            return GlobalMemoryStatusEx(ref status) ? (long?)status.AvailablePhysical : null;
        }

        [StructLayout(LayoutKind.Sequential)]
        private struct MemoryStatus
        {
            internal uint Length;
            internal uint Load;
            internal ulong TotalPhysical;
            internal ulong AvailablePhysical;
            internal ulong TotalPageFile;
            internal ulong AvailablePageFile;
            internal ulong TotalVirtual;
            internal ulong AvailableVirtual;
            internal ulong AvailableExtendedVirtual;
        }

        [DllImport("kernel32", ExactSpelling = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        private static extern bool GlobalMemoryStatusEx(ref MemoryStatus status);
    }
}

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
            if (NativeLibrary.IsWindows)
            {
                return OfWindows();
            }
            long? machine = OfLinux();
            long? group = LeftToGroup("/sys/fs/cgroup");
            return machine == null || group == null ? machine : Math.Min(machine.Value, group.Value);
        }

        /// <summary>
        /// What a limit on a group of processes leaves them, as containers have one; null without a limit. The files
        /// are those of Linux's control groups, in their second version or in their first.
        /// </summary>
        internal static long? LeftToGroup(string folder)
        {
            return LeftToGroup(folder + "/memory.max", folder + "/memory.current", folder + "/memory.stat",
                    "inactive_file ")
                ?? LeftToGroup(folder + "/memory/memory.limit_in_bytes", folder + "/memory/memory.usage_in_bytes",
                    folder + "/memory/memory.stat", "total_inactive_file ");
        }

        private static long? LeftToGroup(string limit, string used, string statistics, string cache)
        {
            try
            {
                long most, taken;
                if (!long.TryParse(File.ReadAllText(limit).Trim(), out most)
                    || !long.TryParse(File.ReadAllText(used).Trim(), out taken))
                {
                    return null; // "max" stands for no limit.
                }
                // Files that are kept in memory make room when it is wanted.
                foreach (string line in File.ReadAllLines(statistics))
                {
                    if (line.StartsWith(cache, StringComparison.Ordinal))
                    {
                        taken -= long.Parse(line.Substring(cache.Length), CultureInfo.InvariantCulture);
                    }
                }
                return Math.Max(0, most - taken);
            }
            catch (IOException)
            {
                return null; // There are no such files.
            }
            catch (UnauthorizedAccessException)
            {
                return null;
            }
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

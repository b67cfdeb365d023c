using System;
using System.Diagnostics;
using System.IO;
using NUnit.Framework;

namespace Qelm.Tests
{
    /// <summary>Runs the programs in C that are built beside these tests.</summary>
    internal static class NativeProgram
    {
        internal static string Run(string name, params string[] arguments)
        {
            string path = Path.Combine(Environment.GetEnvironmentVariable("QELM_BUILD_DIR"), "bin", name);
            var start = new ProcessStartInfo(path, string.Join(" ", arguments))
            {
                UseShellExecute = false,
                RedirectStandardOutput = true
            };
            using (Process process = Process.Start(start))
            {
                string output = process.StandardOutput.ReadToEnd();
                process.WaitForExit();
                Assert.AreEqual(0, process.ExitCode, name);
                return output;
            }
        }
    }
}

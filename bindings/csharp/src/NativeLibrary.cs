using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;

namespace Qelm
{
    /// <summary>Meets a missing or unfit native library with a message that helps.</summary>
    internal static class NativeLibrary
    {
        private static volatile bool loaded;

        /// <summary>Loads the native library, or says where it was looked for. Every way in begins here.</summary>
        internal static void Require()
        {
            if (loaded)
            {
                return;
            }
            try
            {
                NativeMethods.decode_integer_from_sphere(0, 0, 1);
                loaded = true;
            }
            catch (DllNotFoundException error)
            {
                throw new DllNotFoundException(NotFound(), error);
            }
            catch (BadImageFormatException error)
            {
                throw new BadImageFormatException(NotFound(), error);
            }
        }

        /// <summary>The version of the library that is loaded.</summary>
        internal static string Version
        {
            get
            {
                Require();
                return Marshal.PtrToStringAnsi(NativeMethods.qelmversion());
            }
        }

        internal static string StatusText(int status)
        {
            return Marshal.PtrToStringAnsi(NativeMethods.qelmstatustext(status));
        }

        private static string FileName
        {
            get { return IsWindows ? "qelm.dll" : "libqelm.so"; }
        }

        internal static bool IsWindows
        {
            get { return Environment.OSVersion.Platform == PlatformID.Win32NT; }
        }

        private static string NotFound()
        {
            var message = new StringBuilder();
            message.Append("The native library " + FileName + " could not be loaded. It is 64-bit only, and this "
                + "process is " + (Environment.Is64BitProcess ? "64-bit" : "32-bit: build for x64") + ".");
            foreach (string folder in ProbedFolders())
            {
                bool there = File.Exists(Path.Combine(folder, FileName));
                message.Append(Environment.NewLine + "  ");
                message.Append((there ? "found, but not loadable: " : "not in: ") + folder);
            }
            message.Append(Environment.NewLine + "  nor in the folders of the environment variable " + PathVariable
                + ": " + (Environment.GetEnvironmentVariable(PathVariable) ?? "(not set)"));
            return message.ToString();
        }

        private static string PathVariable
        {
            get { return IsWindows ? "PATH" : "LD_LIBRARY_PATH"; }
        }

        /// <summary>Where runtimes look: beside this assembly and the program, and where packages put it.</summary>
        private static IEnumerable<string> ProbedFolders()
        {
            string package = Path.Combine("runtimes", IsWindows ? "win-x64" : "linux-x64", "native");
            string program = WithoutSeparator(AppDomain.CurrentDomain.BaseDirectory);
            string assembly = Path.GetDirectoryName(typeof(NativeLibrary).Assembly.Location);
            // An assembly that was loaded from memory has no folder.
            if (!string.IsNullOrEmpty(assembly) && assembly != program)
            {
                yield return assembly;
                yield return Path.Combine(assembly, package);
            }
            yield return program;
            yield return Path.Combine(program, package);
        }

        private static string WithoutSeparator(string folder)
        {
            return folder.TrimEnd(Path.DirectorySeparatorChar, Path.AltDirectorySeparatorChar);
        }
    }
}

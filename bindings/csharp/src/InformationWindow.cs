using System;

namespace Qelm
{
    /// <summary>What became of a request to show the information window.</summary>
    public enum InformationWindowResult
    {
        /// <summary>The window's thread could not be started.</summary>
        NotStarted = 0,

        /// <summary>The window's thread was started. Whether a window appears is decided there.</summary>
        Started = 1,

        /// <summary>A window is open already, or memory ran out.</summary>
        AlreadyOpen = 2,

        /// <summary>The environment variable BLOCK_FILEIO is set.</summary>
        Suppressed = 3
    }

    /// <summary>The product's information window. Windows only.</summary>
    /// <remarks>
    /// The window is made from the window class "QuobinsCoolClass", which the library does not register under that full
    /// name: unless the process has registered it by other means, <see cref="Show"/> answers
    /// <see cref="InformationWindowResult.Started"/> and no window appears. That is how the C interface is defined.
    /// </remarks>
    public static class InformationWindow
    {
        /// <summary>The window's handle (HWND), or zero.</summary>
        /// <exception cref="PlatformNotSupportedException">This is not Windows.</exception>
        public static IntPtr Handle
        {
            get
            {
                EnsureWindows();
                return NativeMethods.getPoshHandle();
            }
        }

        /// <summary>Starts the window on a thread of its own and returns at once.</summary>
        /// <param name="logo">A GDI bitmap handle (HBITMAP) that stays valid while the window is open; with zero no
        /// window is made.</param>
        /// <param name="owner">The owner's window handle (HWND), over which the window is centred, or zero.</param>
        /// <returns>What became of it.</returns>
        /// <exception cref="PlatformNotSupportedException">This is not Windows.</exception>
        public static InformationWindowResult Show(IntPtr logo, IntPtr owner)
        {
            EnsureWindows();
            return (InformationWindowResult)NativeMethods.doPoshModal(logo, owner);
        }

        private static void EnsureWindows()
        {
            if (!NativeLibrary.IsWindows)
            {
                throw new PlatformNotSupportedException("The information window exists on Windows only.");
            }
            NativeLibrary.Require();
        }
    }
}

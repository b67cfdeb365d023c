using System;
using System.Runtime.InteropServices;

namespace Qelm
{
    /// <summary>
    /// Owns one native mesh system and frees it exactly once: on disposal or, forgotten, by the finaliser.
    /// Passed itself to every native call, so that neither can happen while a call is running.
    /// </summary>
    internal sealed class MeshSystemHandle : SafeHandle
    {
        /// <summary>Used by the marshaller, which then stores the native pointer.</summary>
        internal MeshSystemHandle()
            : base(IntPtr.Zero, true)
        {
        }

        public override bool IsInvalid
        {
            get { return handle == IntPtr.Zero; }
        }

        protected override bool ReleaseHandle()
        {
            NativeMethods.qelmfree(handle);
            return true;
        }
    }
}

using System;
using System.Runtime.InteropServices;

namespace Qelm
{
    /// <summary>Keeps a handle from being freed while pointers that were read from it are in use.</summary>
    internal struct HandleLease : IDisposable
    {
        private readonly SafeHandle handle;
        private bool held;

        internal HandleLease(SafeHandle handle)
        {
            this.handle = handle;
            held = false;
            handle.DangerousAddRef(ref held);
        }

        public void Dispose()
        {
            if (held)
            {
                held = false;
                handle.DangerousRelease();
            }
        }
    }
}

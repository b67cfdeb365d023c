using System.Runtime.InteropServices;

namespace Qelm
{
    /// <summary>Points of isoline segments, stored column by column: all x, all y, all z.</summary>
    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct IsoPointMatrix
    {
        internal double* data;
        internal long rows;
        internal long cols;
    }

    /// <summary>Point rows of isoline segments, stored column by column: all starts, all ends.</summary>
    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct IsoEdgeMatrix
    {
        internal int* data;
        internal long rows;
        internal long cols;
    }
}

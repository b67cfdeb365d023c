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

    /// <summary>Level curves: points packed xyz, and per curve its start, level and whether it is closed.</summary>
    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct QelmCurves
    {
        internal long curveCount;
        internal long pointCount;
        internal double* points;
        internal long* starts;
        internal int* levels;
        internal int* closed;
    }

    /// <summary>How often something was found, and where first; -1 if nowhere.</summary>
    [StructLayout(LayoutKind.Sequential)]
    internal struct QelmFinding
    {
        internal long count;
        internal long first;
    }

    /// <summary>What the check of a mesh found.</summary>
    [StructLayout(LayoutKind.Sequential)]
    internal struct QelmMeshReport
    {
        internal QelmFinding indexOutOfRange;
        internal QelmFinding repeatedVertex;
        internal QelmFinding unusedVertex;
        internal QelmFinding notFinite;
        internal QelmFinding nearZeroArea;
        internal QelmFinding sizeOutOfRange;
        internal QelmFinding untaggedPart;
        internal QelmFinding part;
        internal QelmFinding taggedVertex;
        internal QelmFinding crowdedEdge;
        internal QelmFinding boundaryLoop;
        internal QelmFinding opposedEdge;
        internal QelmFinding repeatedTriangle;
        internal QelmFinding coincidentVertex;
        internal long worstTriangle;
        internal double worstQuality;
    }

    /// <summary>What constructing a system takes.</summary>
    [StructLayout(LayoutKind.Sequential)]
    internal struct QelmPrediction
    {
        internal long factorEntries;
        internal long handleBytes;
        internal long peakBytes;
        internal double multiplications;
    }

    /// <summary>What the robust construction does to a mesh.</summary>
    [StructLayout(LayoutKind.Sequential)]
    internal struct QelmRobustReport
    {
        internal long changed;
        internal long sheets;
        internal long flatTriangles;
        internal long notDelaunayEdges;
        internal long flips;
    }
}

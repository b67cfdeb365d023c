using System;
using System.Runtime.InteropServices;

namespace Qelm
{
    /// <summary>
    /// The native exports, one declaration each, in the order of the C header. Only blittable types,
    /// safe handles and one narrow string cross the boundary; lengths and indices are checked before.
    /// </summary>
    internal static unsafe class NativeMethods
    {
        internal const string Library = "qelm";

        // Construction and release

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int qelmctorTagged(int vertexCount, double* vertices, int triangleCount,
            int* triangles, int* tags, int* taggedCountOut, int* status, out MeshSystemHandle handleOut);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void dupl(MeshSystemHandle h, out MeshSystemHandle copyOut);

        /// <summary>Called by the safe handle alone: it owns the pointer.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void qelmfree(IntPtr h);

        // Accessors

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int qelminfo(MeshSystemHandle h);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int qelverts(MeshSystemHandle h, double** coordinatesOut);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int qeltris(MeshSystemHandle h, int** indicesOut);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int usecount(MeshSystemHandle h);

        // Solving

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void qelmsolveTagged(MeshSystemHandle handle, double* values, double* result,
            int* status);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void qelmsolvePTagged(MeshSystemHandle handle, double* values, double* load,
            double* result, int* status);

        // Welding

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int qelmWeld(int vertexCount, double* vertices, int triangleCount,
            int* triangles, double tolerance, double* weldedVertices, int* weldedTriangles, int* vertexMap,
            int* weldedVertexCount, int* weldedTriangleCount);

        // Isolines and heat map

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void qelisoline(MeshSystemHandle handle, double* field, int nvals,
            double* vals, IsoPointMatrix** pointsOut, IsoEdgeMatrix** edgesOut);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void qelfreeisoline(IsoPointMatrix* points, IsoEdgeMatrix* edges);

        // A path that the narrow form cannot hold must not silently become another file's name.
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            CharSet = CharSet.Ansi, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        internal static extern void wobj(MeshSystemHandle handle, double* field,
            [MarshalAs(UnmanagedType.LPStr)] string path);

        // Integer codec

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int encode_integer_to_sphere(int value, float* x, float* y, float* z);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int decode_integer_from_sphere(float x, float y, float z);

        // Information window, Windows only

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int doPoshModal(IntPtr logo, IntPtr owner);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IntPtr getPoshHandle();

        // Additions

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int qelmcheckTagged(int vertexCount, double* vertices, int triangleCount,
            int* triangles, int* tags, QelmMeshReport* reportOut);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int qelmctorRobustTagged(int vertexCount, double* vertices, int triangleCount,
            int* triangles, int* tags, int* taggedCountOut, int* status, out MeshSystemHandle handleOut);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int qelmcheckRobustTagged(int vertexCount, double* vertices, int triangleCount,
            int* triangles, int* tags, QelmRobustReport* reportOut);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int qelmpredictTagged(int vertexCount, double* vertices, int triangleCount,
            int* triangles, int* tags, int robust, QelmPrediction* predictionOut);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern int qelmctorLimitedTagged(int vertexCount, double* vertices, int triangleCount,
            int* triangles, int* tags, int robust, long mostBytes, QelmPrediction* predictionOut, int* taggedCountOut,
            int* status, out MeshSystemHandle handleOut);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void qelmcurvesTagged(MeshSystemHandle handle, double* field, int levelCount,
            double* levels, QelmCurves** curvesOut, int* status);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void qelmfreecurves(QelmCurves* curves);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void qelmsolveManyTagged(MeshSystemHandle handle, int count, double* values,
            double* loads, double* results, int* status);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void qelmsolveCheckedTagged(MeshSystemHandle handle, int count, double* values,
            double* loads, double* results, long* firstOut, int* status);

        // Both hand out strings that belong to the library.

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IntPtr qelmversion();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IntPtr qelmstatustext(int status);
    }
}

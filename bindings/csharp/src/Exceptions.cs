using System;

namespace Qelm
{
    /// <summary>Status codes of the native library.</summary>
    public enum QelmStatus
    {
        /// <summary>Success.</summary>
        Ok = 0,

        /// <summary>A vertex count below one, a negative count or tolerance, or no handle.</summary>
        BadCountOrHandle = 1,

        /// <summary>The system holds no vertex order.</summary>
        NoVertexOrder = 2,

        /// <summary>A triangle names the same vertex twice.</summary>
        RepeatedVertex = 23,

        /// <summary>There is no triangle, or a vertex lies in none.</summary>
        UnusedVertex = 24,

        /// <summary>An array is missing.</summary>
        NullArray = 25,

        /// <summary>From <c>Mesh.Check</c>: a triangle names a vertex that does not exist.</summary>
        IndexOutOfRange = 101,

        /// <summary>From <c>Mesh.Check</c>: a coordinate is infinite or not a number.</summary>
        NotFinite = 102,

        /// <summary>From <c>Mesh.Check</c>: a triangle has no area, or too little for its size and position.</summary>
        NearZeroArea = 103,

        /// <summary>From <c>Mesh.Check</c>: a triangle is too small or too large for the arithmetic.</summary>
        SizeOutOfRange = 104,

        /// <summary>From <c>Mesh.Check</c>: a connected part of the mesh has no tagged vertex.</summary>
        UntaggedPart = 105,

        /// <summary>The flips of robust construction did not come to an end.</summary>
        EndlessFlips = 106,

        /// <summary>The system would take more memory than it may, or more than the library can index.</summary>
        TooLarge = 107,

        /// <summary>The factorisation failed.</summary>
        NotFactorised = 108,

        /// <summary>The value of a tagged vertex is infinite or not a number.</summary>
        ValueNotFinite = 109,

        /// <summary>The load of a free vertex is infinite or not a number.</summary>
        LoadNotFinite = 110,

        /// <summary>The solution is infinite or not a number.</summary>
        FieldNotFinite = 111
    }

    /// <summary>The native library refused a call.</summary>
    public class QelmException : Exception
    {
        /// <summary>Makes an exception for a status of the native library.</summary>
        /// <param name="status">The status.</param>
        /// <param name="message">What went wrong.</param>
        public QelmException(QelmStatus status, string message)
            : base(message)
        {
            Status = status;
        }

        /// <summary>The status that the native library gave.</summary>
        public QelmStatus Status { get; private set; }

        /// <summary>The one place where status codes become exceptions.</summary>
        internal static void ThrowUnlessOk(int status)
        {
            if (status != (int)QelmStatus.Ok)
            {
                throw new QelmException((QelmStatus)status, Describe(status));
            }
        }

        private static string Describe(int status)
        {
            return "qelm status " + Text.Of(status) + ": " + NativeLibrary.StatusText(status);
        }
    }

    /// <summary>
    /// The system cannot be solved: its factorisation failed, a part of the mesh has no prescribed vertex,
    /// or triangles without area make the equations meaningless.
    /// </summary>
    public sealed class SingularSystemException : QelmException
    {
        /// <summary>Makes an exception for a system that cannot be solved.</summary>
        /// <param name="info">How the factorisation ended.</param>
        /// <param name="message">What went wrong.</param>
        public SingularSystemException(FactorisationInfo info, string message)
            : base(QelmStatus.Ok, message)
        {
            Info = info;
        }

        /// <summary>
        /// How the factorisation ended. It can be <see cref="FactorisationInfo.Success"/>: not every singular
        /// system is noticed by the factorisation, which is why the mesh and the results are looked at too.
        /// </summary>
        public FactorisationInfo Info { get; private set; }
    }
}

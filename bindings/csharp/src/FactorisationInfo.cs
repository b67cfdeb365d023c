namespace Qelm
{
    /// <summary>How the factorisation of a <see cref="MeshSystem"/> ended, in the native library's numbers.</summary>
    public enum FactorisationInfo
    {
        /// <summary>The system is factorised.</summary>
        Success = 0,

        /// <summary>A pivot is zero: some free vertices are not tied to any prescribed one.</summary>
        NumericalIssue = 1,

        /// <summary>Not reached by the solver in use.</summary>
        NoConvergence = 2,

        /// <summary>The matrix could not be taken.</summary>
        InvalidInput = 3
    }
}

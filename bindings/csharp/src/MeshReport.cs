namespace Qelm
{
    /// <summary>How often something was found in a mesh, and where first.</summary>
    public struct MeshFinding
    {
        internal MeshFinding(QelmFinding finding)
            : this()
        {
            Count = checked((int)finding.count);
            First = checked((int)finding.first);
        }

        /// <summary>How often.</summary>
        public int Count { get; private set; }

        /// <summary>The lowest index, of a triangle or a vertex as the finding says; -1 if there is none.</summary>
        public int First { get; private set; }

        /// <summary>"3, first 17", or "none".</summary>
        public override string ToString()
        {
            return Count == 0 ? "none" : Text.Of(Count) + ", first " + Text.Of(First);
        }
    }

    /// <summary>How well a mesh can be solved on.</summary>
    public enum MeshGrade
    {
        /// <summary>Rounding changes fields by less than a millionth.</summary>
        Fine,

        /// <summary>
        /// Triangles are very thin, or very small for their distance from the origin, and fields have an error, which was
        /// measured. A few such triangles in a good mesh do no harm.
        /// </summary>
        WorksWithError,

        /// <summary>The mesh cannot be built or solved on; the status says why.</summary>
        WillNotWork
    }

    /// <summary>
    /// What <c>Mesh.Check</c> found. Each finding looks at the mesh by itself, whatever the others found; those for
    /// information keep no mesh from being solved on.
    /// </summary>
    public sealed class MeshReport
    {
        // Six digits of a field are more than its mesh is good for.
        internal const double NoError = 1e-6;

        internal MeshReport(int code, QelmMeshReport report, bool works, double error)
        {
            Status = (QelmStatus)code;
            IndexOutOfRange = new MeshFinding(report.indexOutOfRange);
            RepeatedVertex = new MeshFinding(report.repeatedVertex);
            UnusedVertex = new MeshFinding(report.unusedVertex);
            NotFinite = new MeshFinding(report.notFinite);
            NearZeroArea = new MeshFinding(report.nearZeroArea);
            SizeOutOfRange = new MeshFinding(report.sizeOutOfRange);
            UntaggedPart = new MeshFinding(report.untaggedPart);
            Part = new MeshFinding(report.part);
            TaggedVertex = new MeshFinding(report.taggedVertex);
            CrowdedEdge = new MeshFinding(report.crowdedEdge);
            BoundaryLoop = new MeshFinding(report.boundaryLoop);
            OpposedEdge = new MeshFinding(report.opposedEdge);
            RepeatedTriangle = new MeshFinding(report.repeatedTriangle);
            CoincidentVertex = new MeshFinding(report.coincidentVertex);
            WorstTriangle = checked((int)report.worstTriangle);
            WorstQuality = report.worstQuality;
            Error = works && error > NoError ? error : 0;
            Grade = !works ? MeshGrade.WillNotWork : Error == 0 ? MeshGrade.Fine : MeshGrade.WorksWithError;
        }

        /// <summary><see cref="QelmStatus.Ok"/>, or the first defect: in the order of the properties here.</summary>
        public QelmStatus Status { get; private set; }

        /// <summary>How well the mesh can be solved on; the command-line tool comes to the same.</summary>
        public MeshGrade Grade { get; private set; }

        /// <summary>
        /// The error that rounding leaves in a field, as a part of its largest value: measured as
        /// <see cref="MeshSystem.MeasureError"/> does where the shape of the triangles leaves it open, and 0 where it is
        /// below a millionth, or nothing works.
        /// </summary>
        public double Error { get; private set; }

        /// <summary>
        /// Whether <c>MeshSystem.Build</c> takes the mesh. It also takes some meshes whose <see cref="Status"/> is
        /// <see cref="QelmStatus.NearZeroArea"/>: their grade is <see cref="MeshGrade.WorksWithError"/>.
        /// </summary>
        public bool IsSound
        {
            get { return Grade != MeshGrade.WillNotWork; }
        }

        /// <summary>The status in words.</summary>
        public string Description
        {
            get { return NativeLibrary.StatusText((int)Status); }
        }

        /// <summary>
        /// "fine", "will work, but with an error of about 4e-05 of the largest value: triangle 17 is too thin, or too
        /// small for its distance from the origin", or "will not work: " and why.
        /// </summary>
        public override string ToString()
        {
            if (Grade == MeshGrade.Fine)
            {
                return "fine";
            }
            if (Grade == MeshGrade.WorksWithError)
            {
                return "will work, but with an error of about " + Text.Rounded(Error) + " of the largest value: triangle "
                    + Text.Of(WorstTriangle) + " is too thin, or too small for its distance from the origin";
            }
            return "will not work: " + (Status == QelmStatus.Ok ? "rounding leaves nothing of a field" : Description);
        }

        /// <summary>Triangles that name a vertex that does not exist.</summary>
        public MeshFinding IndexOutOfRange { get; private set; }

        /// <summary>Triangles that name a vertex twice.</summary>
        public MeshFinding RepeatedVertex { get; private set; }

        /// <summary>Vertices that no triangle names.</summary>
        public MeshFinding UnusedVertex { get; private set; }

        /// <summary>Vertices with a coordinate that is infinite or not a number.</summary>
        public MeshFinding NotFinite { get; private set; }

        /// <summary>Triangles with a quality below 2^-44: no area, or too little for their size and position.</summary>
        public MeshFinding NearZeroArea { get; private set; }

        /// <summary>Triangles whose longest edge is not within 1e-60 and 1e60.</summary>
        public MeshFinding SizeOutOfRange { get; private set; }

        /// <summary>Connected parts without a tagged vertex; the first is given by its lowest vertex.</summary>
        public MeshFinding UntaggedPart { get; private set; }

        /// <summary>For information: connected parts; the first is given by its lowest vertex.</summary>
        public MeshFinding Part { get; private set; }

        /// <summary>For information: vertices tagged 1, 2 or 3.</summary>
        public MeshFinding TaggedVertex { get; private set; }

        /// <summary>For information: edges of more than two triangles; the first is given by a triangle.</summary>
        public MeshFinding CrowdedEdge { get; private set; }

        /// <summary>For information: boundary loops; the first is given by its lowest vertex.</summary>
        public MeshFinding BoundaryLoop { get; private set; }

        /// <summary>For information: edges whose two triangles are oriented against each other.</summary>
        public MeshFinding OpposedEdge { get; private set; }

        /// <summary>For information: triangles with the vertices of an earlier one.</summary>
        public MeshFinding RepeatedTriangle { get; private set; }

        /// <summary>For information: vertices with exactly the coordinates of an earlier one.</summary>
        public MeshFinding CoincidentVertex { get; private set; }

        /// <summary>The first triangle of the lowest quality; -1 if none has one.</summary>
        public int WorstTriangle { get; private set; }

        /// <summary>
        /// Its quality h * h / (L * W), with its longest edge L, the height h on it, and the larger one W of L and its
        /// largest coordinate: fields have a relative rounding error of about 2.2e-16 / quality. Infinite if no
        /// triangle has one.
        /// </summary>
        public double WorstQuality { get; private set; }
    }
}

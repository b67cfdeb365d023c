namespace Qelm
{
    /// <summary>What <c>MeshSystem.BuildRobust</c> does to a mesh; all 0 where the plain matrix is good.</summary>
    public sealed class RobustReport
    {
        internal RobustReport(int code, QelmRobustReport report)
        {
            Status = (QelmStatus)code;
            IsChanged = report.changed != 0;
            Sheets = checked((int)report.sheets);
            FlatTriangles = checked((int)report.flatTriangles);
            NotDelaunayEdges = checked((int)report.notDelaunayEdges);
            Flips = report.flips;
        }

        /// <summary>Ok, or why the mesh cannot be built, robustly either.</summary>
        public QelmStatus Status { get; private set; }

        /// <summary>Whether the matrix is another one than that of <c>MeshSystem.Build</c>.</summary>
        public bool IsChanged { get; private set; }

        /// <summary>2 over a surface that is open where nothing is prescribed, that has one side only, or is not a
        /// surface at all; else 1.</summary>
        public int Sheets { get; private set; }

        /// <summary>Triangles without height, or almost.</summary>
        public int FlatTriangles { get; private set; }

        /// <summary>Edges whose opposite angles add up to more than a straight one: their plain weights are
        /// negative.</summary>
        public int NotDelaunayEdges { get; private set; }

        /// <summary>Flips of edges, of all sheets.</summary>
        public long Flips { get; private set; }

        /// <summary>"changed: 3 edges not Delaunay, 1 triangles without height, 12 flips", "the plain matrix is good", or
        /// why the mesh cannot be built.</summary>
        public override string ToString()
        {
            if (Status != QelmStatus.Ok)
            {
                return NativeLibrary.StatusText((int)Status);
            }
            return !IsChanged ? "the plain matrix is good"
                : "changed: " + Text.Of(NotDelaunayEdges) + " edges not Delaunay, " + Text.Of(FlatTriangles)
                    + " triangles without height, " + Text.Of(Flips) + " flips";
        }
    }
}

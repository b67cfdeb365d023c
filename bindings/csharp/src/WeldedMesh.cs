namespace Qelm
{
    /// <summary>What <c>Mesh.Weld</c> made. The arrays are the caller's.</summary>
    public sealed class WeldedMesh
    {
        internal WeldedMesh(double[] vertices, int[] triangles, int[] vertexMap)
        {
            Vertices = vertices;
            Triangles = triangles;
            VertexMap = vertexMap;
        }

        /// <summary>Coordinates x, y, z of the kept vertices, in input order, bit for bit.</summary>
        public double[] Vertices { get; private set; }

        /// <summary>Three vertex numbers per kept triangle, in input order.</summary>
        public int[] Triangles { get; private set; }

        /// <summary>For each vertex that went in, its number among the kept ones.</summary>
        public int[] VertexMap { get; private set; }

        /// <summary>Number of kept vertices.</summary>
        public int VertexCount
        {
            get { return Vertices.Length / 3; }
        }

        /// <summary>"5917 of 34560 vertices, 11520 triangles".</summary>
        public override string ToString()
        {
            return Text.Of(VertexCount) + " of " + Text.Of(VertexMap.Length) + " vertices, " + Text.Of(TriangleCount)
                + " triangles";
        }

        /// <summary>Number of kept triangles.</summary>
        public int TriangleCount
        {
            get { return Triangles.Length / 3; }
        }
    }
}

namespace Qelm
{
    /// <summary>The arrays of a mesh with tags, pinned by the caller. Their lengths agree; their elements are not
    /// looked at.</summary>
    internal sealed unsafe class TaggedMesh
    {
        internal readonly double* Vertices;
        internal readonly int VertexCount;
        internal readonly int* Triangles;
        internal readonly int TriangleCount;
        internal readonly int* Tags;

        /// <exception cref="System.ArgumentException">A length is wrong.</exception>
        internal TaggedMesh(double* vertices, int coordinateCount, int* triangles, int indexCount, int* tags,
            int tagCount)
        {
            Vertices = vertices;
            VertexCount = Ensure.Triples(coordinateCount, "vertices");
            Triangles = triangles;
            TriangleCount = Ensure.Triples(indexCount, "triangles");
            Tags = tags;
            Ensure.Length(tagCount, VertexCount, "tags");
        }
    }
}

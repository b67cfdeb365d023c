using System;

namespace Qelm
{
    /// <summary>What can be done to a mesh before a system is built of it.</summary>
    public static unsafe partial class Mesh
    {
        /// <summary>
        /// Merges vertices that lie closer together than a tolerance, chains of them as one, and drops triangles that
        /// lose a corner or repeat the vertices of an earlier one.
        /// </summary>
        /// <remarks>
        /// Vertices exactly at the tolerance stay apart; with a tolerance of 0 nothing is merged, not even vertices at
        /// the same place. A merged vertex stands where its lowest-numbered member stands.
        /// </remarks>
        /// <param name="vertices">Coordinates x, y, z of each vertex.</param>
        /// <param name="triangles">Three vertex numbers per triangle, from 0.</param>
        /// <param name="tolerance">Distance, in the unit of the coordinates; at least 0.</param>
        /// <returns>The welded mesh and where each vertex went.</returns>
        /// <exception cref="ArgumentNullException">An array is null.</exception>
        /// <exception cref="ArgumentException">A length, index, coordinate or the tolerance is wrong; the message names
        /// the first element at fault.</exception>
        public static WeldedMesh Weld(double[] vertices, int[] triangles, double tolerance)
        {
            Ensure.NotNull(vertices, "vertices");
            Ensure.NotNull(triangles, "triangles");
            fixed (double* v = vertices)
            fixed (int* t = triangles)
            {
                return Weld(v, vertices.Length, t, triangles.Length, tolerance);
            }
        }

        private static WeldedMesh Weld(double* vertices, int coordinateCount, int* triangles, int indexCount,
            double tolerance)
        {
            int vertexCount = Ensure.Triples(coordinateCount, "vertices");
            int triangleCount = Ensure.Triples(indexCount, "triangles");
            Ensure.FiniteCoordinates(vertices, vertexCount, "vertices");
            Ensure.IndicesInRange(triangles, triangleCount, vertexCount, "triangles");
            if (!(tolerance >= 0) || !Ensure.IsFinite(tolerance))
            {
                throw new ArgumentException("must be finite and at least 0, is " + Text.Of(tolerance), "tolerance");
            }
            NativeLibrary.Require();

            var weldedVertices = new double[coordinateCount];
            var weldedTriangles = new int[indexCount];
            var map = new int[vertexCount];
            int keptVertices = 0;
            int keptTriangles = 0;
            fixed (double* v = weldedVertices)
            fixed (int* t = weldedTriangles, m = map)
            {
                QelmException.ThrowUnlessOk(NativeMethods.qelmWeld(vertexCount, vertices, triangleCount, triangles,
                    tolerance, v, t, m, &keptVertices, &keptTriangles));
            }
            Array.Resize(ref weldedVertices, 3 * keptVertices);
            Array.Resize(ref weldedTriangles, 3 * keptTriangles);
            return new WeldedMesh(weldedVertices, weldedTriangles, map);
        }

        /// <summary>Looks for what is wrong with a mesh before anything is built of it.</summary>
        /// <remarks>Numbers in the arrays may be anything at all; only their lengths must fit.</remarks>
        /// <param name="vertices">Coordinates x, y, z of each vertex.</param>
        /// <param name="triangles">Three vertex numbers per triangle, from 0.</param>
        /// <param name="tags">One per vertex; 1, 2 and 3 mean "prescribed".</param>
        /// <returns>Whether the mesh is sound, and what was found.</returns>
        /// <exception cref="ArgumentNullException">An array is null.</exception>
        /// <exception cref="ArgumentException">A length is wrong.</exception>
        public static MeshReport Check(double[] vertices, int[] triangles, int[] tags)
        {
            Ensure.NotNull(vertices, triangles, tags);
            fixed (double* v = vertices)
            fixed (int* t = triangles, g = tags)
            {
                return Check(new TaggedMesh(v, vertices.Length, t, triangles.Length, g, tags.Length));
            }
        }

        private static MeshReport Check(TaggedMesh mesh)
        {
            NativeLibrary.Require();

            QelmMeshReport report;
            int code = NativeMethods.qelmcheckTagged(mesh.VertexCount, mesh.Vertices, mesh.TriangleCount,
                mesh.Triangles, mesh.Tags, &report);
            bool works = Works(code, mesh);
            double error = works && MayHaveError(report.worstQuality) ? MeshSystem.ErrorOf(mesh) : 0;
            return new MeshReport(code, report, works && error < MeshSystem.NothingLeft, error);
        }

        // The report's bound on the error, rounding over quality, was never below what was measured.
        private static bool MayHaveError(double worstQuality)
        {
            const double Rounding = 1.0 / (1L << 52);
            return !(Rounding / worstQuality <= MeshReport.NoError);
        }

        // Thin triangles may work all the same; whether they do is what Build asks as well.
        private static bool Works(int code, TaggedMesh mesh)
        {
            var status = (QelmStatus)code;
            string blamed;
            return (status == QelmStatus.Ok || status == QelmStatus.NearZeroArea)
                && Solvability.FirstDefect(mesh, false, out blamed) == null;
        }

        /// <summary>Says what <c>MeshSystem.Build</c> or <c>BuildRobust</c> would take: about a microsecond for each
        /// vertex, and part of the memory, to know.</summary>
        /// <param name="vertices">Coordinates x, y, z of each vertex.</param>
        /// <param name="triangles">Three vertex numbers per triangle, from 0.</param>
        /// <param name="tags">One per vertex; 1, 2 and 3 mean "prescribed".</param>
        /// <param name="robust">Of <c>BuildRobust</c>.</param>
        /// <returns>The figures.</returns>
        /// <exception cref="ArgumentNullException">An array is null.</exception>
        /// <exception cref="ArgumentException">A length, index or coordinate is wrong; the message names the first
        /// vertex or triangle at fault.</exception>
        public static Prediction Predict(double[] vertices, int[] triangles, int[] tags, bool robust = false)
        {
            Ensure.NotNull(vertices, triangles, tags);
            fixed (double* v = vertices)
            fixed (int* t = triangles, g = tags)
            {
                return Predict(new TaggedMesh(v, vertices.Length, t, triangles.Length, g, tags.Length), robust);
            }
        }

        private static Prediction Predict(TaggedMesh mesh, bool robust)
        {
            Ensure.Elements(mesh);
            NativeLibrary.Require();

            QelmPrediction prediction;
            QelmException.ThrowUnlessOk(NativeMethods.qelmpredictTagged(mesh.VertexCount, mesh.Vertices,
                mesh.TriangleCount, mesh.Triangles, mesh.Tags, robust ? 1 : 0, &prediction));
            return new Prediction(prediction);
        }

        /// <summary>Says what <c>MeshSystem.BuildRobust</c> would do to a mesh, without building it.</summary>
        /// <remarks>Numbers in the arrays may be anything at all; only their lengths must fit.</remarks>
        /// <param name="vertices">Coordinates x, y, z of each vertex.</param>
        /// <param name="triangles">Three vertex numbers per triangle, from 0.</param>
        /// <param name="tags">One per vertex; 1, 2 and 3 mean "prescribed".</param>
        /// <returns>What would be done, or why the mesh cannot be built.</returns>
        /// <exception cref="ArgumentNullException">An array is null.</exception>
        /// <exception cref="ArgumentException">A length is wrong.</exception>
        public static RobustReport CheckRobust(double[] vertices, int[] triangles, int[] tags)
        {
            Ensure.NotNull(vertices, triangles, tags);
            fixed (double* v = vertices)
            fixed (int* t = triangles, g = tags)
            {
                return CheckRobust(new TaggedMesh(v, vertices.Length, t, triangles.Length, g, tags.Length));
            }
        }

        private static RobustReport CheckRobust(TaggedMesh mesh)
        {
            NativeLibrary.Require();

            QelmRobustReport report;
            int code = NativeMethods.qelmcheckRobustTagged(mesh.VertexCount, mesh.Vertices, mesh.TriangleCount,
                mesh.Triangles, mesh.Tags, &report);
            return new RobustReport(code, report);
        }
    }
}

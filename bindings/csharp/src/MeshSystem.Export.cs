using System;
using System.IO;

namespace Qelm
{
    public sealed unsafe partial class MeshSystem
    {
        /// <summary>
        /// Writes the mesh with a field as a heat map: <paramref name="path"/> + ".obj" and + ".mtl". The texture
        /// coordinate is the field scaled to 0 .. 1 and reversed: 0 at the largest value. The material names the
        /// colour ramp "viridis.PNG", which viewers look for beside the files: <see cref="WriteColourRamp"/> puts it
        /// there.
        /// </summary>
        /// <remarks>
        /// Six significant digits. The OBJ names its material file by the whole path as given; many viewers fail on
        /// blanks in it. On Windows the path must be expressible in the process's ANSI code page.
        /// </remarks>
        /// <param name="field">One value per vertex, input order.</param>
        /// <param name="path">Base name of both files, without extension. Files that exist are overwritten.</param>
        /// <exception cref="ArgumentNullException">An argument is null.</exception>
        /// <exception cref="ArgumentException">The length is wrong, a value is not finite, all values are equal (they
        /// cannot be scaled), or the path is empty or cannot be expressed.</exception>
        /// <exception cref="IOException">A file could not be written completely.</exception>
        /// <exception cref="UnauthorizedAccessException">A file may not be written.</exception>
        /// <exception cref="ObjectDisposedException">The system is disposed.</exception>
        public void WriteHeatMap(double[] field, string path)
        {
            Ensure.NotNull(field, "field");
            fixed (double* f = field)
            {
                WriteHeatMap(f, field.Length, path);
            }
        }

        /// <summary>
        /// Writes the image "viridis.PNG" that the materials of heat maps name: viridis, yellow at the left, where the
        /// largest values are. One serves all heat maps of a folder.
        /// </summary>
        /// <param name="folder">Where the heat maps are; an image of that name is overwritten.</param>
        /// <exception cref="ArgumentNullException">The folder is null.</exception>
        /// <exception cref="IOException">The image cannot be written.</exception>
        /// <exception cref="UnauthorizedAccessException">The image may not be written.</exception>
        public static void WriteColourRamp(string folder)
        {
            Ensure.NotNull(folder, "folder");
            const string Name = "viridis.PNG";
            using (Stream image = typeof(MeshSystem).Assembly.GetManifestResourceStream(Name))
            using (FileStream file = File.Create(Path.Combine(folder, Name)))
            {
                image.CopyTo(file);
            }
        }

        private void WriteHeatMap(double* field, int count, string path)
        {
            Ensure.Length(count, VertexCount, "field");
            Ensure.FiniteNumbers(field, count, "vertex", "field");
            EnsureNotConstant(field, count);
            EnsurePath(path);
            MeshSystemHandle live = Live();

            var files = new HeatMapFiles(path);
            files.Clear();
            var system = new double[count];
            fixed (double* s = system)
            {
                order.ToSystem(field, s);
                WriteNarrow(live, s, path);
            }
            files.EnsureComplete(LastSystemTriangle());
        }

        private static void WriteNarrow(MeshSystemHandle live, double* systemField, string path)
        {
            try
            {
                NativeMethods.wobj(live, systemField, path);
            }
            catch (ArgumentException error)
            {
                throw new ArgumentException("the path cannot be expressed in this process's code page: " + path, "path",
                    error);
            }
        }

        private static void EnsureNotConstant(double* field, int count)
        {
            for (int i = 1; i < count; ++i)
            {
                if (field[i] != field[0])
                {
                    return;
                }
            }
            throw new ArgumentException("every value is " + Text.Of(field[0]) + "; there is nothing to scale", "field");
        }

        private static void EnsurePath(string path)
        {
            Ensure.NotNull(path, "path");
            if (path.Length == 0 || path.IndexOf('\0') >= 0)
            {
                throw new ArgumentException("the path is empty or has a zero character in it", "path");
            }
        }
    }
}

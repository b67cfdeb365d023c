using System;
using System.IO;
using System.Text;

namespace Qelm
{
    /// <summary>
    /// The two files of a heat map. The native export tells of failures on the standard error stream alone, so they
    /// are opened and emptied before it and looked at after it.
    /// </summary>
    internal sealed class HeatMapFiles
    {
        /// <summary>The last line of every material file.</summary>
        private const string MaterialEnd = "map_Kd viridis.PNG";

        private readonly string mesh;
        private readonly string material;

        internal HeatMapFiles(string path)
        {
            mesh = path + ".obj";
            material = path + ".mtl";
        }

        /// <summary>Makes both files, empty. Touches neither unless both can be written.</summary>
        internal void Clear()
        {
            bool meshWasThere = File.Exists(mesh);
            using (FileStream first = File.Open(mesh, FileMode.OpenOrCreate, FileAccess.Write))
            {
                try
                {
                    using (FileStream second = File.Open(material, FileMode.OpenOrCreate, FileAccess.Write))
                    {
                        first.SetLength(0);
                        second.SetLength(0);
                    }
                    return;
                }
                catch
                {
                    first.Dispose();
                    if (!meshWasThere)
                    {
                        File.Delete(mesh);
                    }
                    throw;
                }
            }
        }

        /// <summary>Looks for the last line of each file, which a full disk would have cut off.</summary>
        internal void EnsureComplete(int[] lastTriangle)
        {
            EnsureEnd(mesh, "f " + Corner(lastTriangle[0]) + " " + Corner(lastTriangle[1]) + " "
                + Corner(lastTriangle[2]));
            EnsureEnd(material, MaterialEnd);
        }

        private static string Corner(int systemVertex)
        {
            return Text.Of(systemVertex + 1) + "/" + Text.Of(systemVertex + 1);
        }

        private static void EnsureEnd(string file, string line)
        {
            string end = Tail(file, line.Length + 3).TrimEnd('\r', '\n');
            if (!end.EndsWith("\n" + line, StringComparison.Ordinal))
            {
                throw new IOException("The file was not written completely: " + file);
            }
        }

        /// <summary>The last bytes of a file, or all of it when it is shorter.</summary>
        private static string Tail(string file, int length)
        {
            using (FileStream stream = File.OpenRead(file))
            {
                var bytes = new byte[length];
                stream.Seek(-Math.Min(length, stream.Length), SeekOrigin.End);
                return Encoding.ASCII.GetString(bytes, 0, stream.Read(bytes, 0, length));
            }
        }
    }
}

using System.Reflection;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;

// Stated here because two compilers build this assembly; a test compares it with the C header's.
[assembly: AssemblyVersion("1.0.0.0")]
[assembly: AssemblyFileVersion("1.0.0.0")]
[assembly: AssemblyInformationalVersion("1.0.0")]
[assembly: AssemblyTitle("Qelm")]
[assembly: AssemblyProduct("qelm")]
[assembly: AssemblyDescription("Smooth fields between prescribed values on triangle meshes, and their level curves")]
[assembly: AssemblyCopyright("Copyright the qelm developers, MIT licence")]
[assembly: ComVisible(false)]
[assembly: InternalsVisibleTo("Qelm.Tests")]

using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using System.Text.RegularExpressions;
using NUnit.Framework;

namespace Qelm.Tests
{
    /// <summary>The binding's declarations against the export lists and the C header.</summary>
    [TestFixture]
    public class BindingShapeTests
    {
        private static readonly MethodInfo[] Declarations = typeof(NativeMethods)
            .GetMethods(BindingFlags.Static | BindingFlags.NonPublic | BindingFlags.Public)
            .Where(method => (method.Attributes & MethodAttributes.PinvokeImpl) != 0)
            .ToArray();

        /// <summary>How a C type is spelt here.</summary>
        private static readonly Dictionary<string, string> SpellingOf = new Dictionary<string, string>
        {
            { "void", "Void" }, { "int", "Int32" }, { "double", "Double" }, { "float", "Single" },
            { "int*", "Int32*" }, { "const int*", "Int32*" }, { "const int**", "Int32**" },
            { "double*", "Double*" }, { "const double*", "Double*" }, { "const double**", "Double**" },
            { "float*", "Single*" }, { "const char*", "String" }, { "void*", "IntPtr" },
            { "const MeshSystem*", "MeshSystemHandle" }, { "MeshSystem**", "MeshSystemHandle&" },
            { "MeshSystem*", "IntPtr" },
            { "IsoPointMatrix*", "IsoPointMatrix*" }, { "IsoPointMatrix**", "IsoPointMatrix**" },
            { "IsoEdgeMatrix*", "IsoEdgeMatrix*" }, { "IsoEdgeMatrix**", "IsoEdgeMatrix**" },
            { "QelmMeshReport*", "QelmMeshReport*" }, { "QelmRobustReport*", "QelmRobustReport*" },
            { "QelmPrediction*", "QelmPrediction*" }, { "int64_t", "Int64" }, { "int64_t*", "Int64*" },
            { "QelmCurves*", "QelmCurves*" }, { "QelmCurves**", "QelmCurves**" }
        };

        [Test]
        public void EveryExportIsDeclaredOnceAndNothingElse()
        {
            string[] exports = Lines("src/exports.txt").Concat(Lines("src/exports-windows.txt")).ToArray();
            CollectionAssert.AreEquivalent(exports, Declarations.Select(method => method.Name));
        }

        [Test]
        public void EveryDeclarationIsCdeclAndExact()
        {
            foreach (MethodInfo method in Declarations)
            {
                var import = (DllImportAttribute)method.GetCustomAttributes(typeof(DllImportAttribute), false).Single();
                Assert.AreEqual("qelm", import.Value, method.Name);
                Assert.AreEqual(CallingConvention.Cdecl, import.CallingConvention, method.Name);
                Assert.IsTrue(import.ExactSpelling, method.Name);
                Assert.IsFalse(import.SetLastError, method.Name);
                Assert.AreEqual(method.Name, import.EntryPoint, method.Name);
            }
        }

        [Test]
        public void ParametersAreThoseOfTheHeaderInOrder()
        {
            foreach (MethodInfo method in Declarations)
            {
                CollectionAssert.AreEqual(HeaderSignature(method.Name), Signature(method), method.Name);
            }
        }

        [Test]
        public void ANarrowStringIsNeverReplacedByABestFit()
        {
            foreach (MethodInfo method in Declarations.Where(HasString))
            {
                var import = (DllImportAttribute)method.GetCustomAttributes(typeof(DllImportAttribute), false).Single();
                Assert.IsFalse(import.BestFitMapping, method.Name);
                Assert.IsTrue(import.ThrowOnUnmappableChar, method.Name);
                Assert.AreEqual(CharSet.Ansi, import.CharSet, method.Name);
            }
            Assert.AreEqual(1, Declarations.Count(HasString));
        }

        [Test]
        public void RecordsAreLaidOutAsInC()
        {
            string[] layouts = NativeProgram.Run("record_layouts")
                .Split(new[] { '\n' }, StringSplitOptions.RemoveEmptyEntries);
            CollectionAssert.AreEquivalent(layouts, Records().SelectMany(Layout));
        }

        [Test]
        public void EveryRecordOfTheHeaderIsDeclared()
        {
            IEnumerable<string> records = Regex.Matches(Header(), @"^typedef struct (\w+) \{", RegexOptions.Multiline)
                .Cast<Match>()
                .Select(match => match.Groups[1].Value);
            CollectionAssert.AreEquivalent(records, Records().Select(type => type.Name));
        }

        [Test]
        public void StatusCodesHaveTheNumbersOfTheHeader()
        {
            IEnumerable<int> codes = Regex.Matches(Header(), @"QELM_(?:STATUS|CHECK)_\w+ = (\d+)")
                .Cast<Match>()
                .Select(match => int.Parse(match.Groups[1].Value));
            CollectionAssert.AreEquivalent(codes,
                Enum.GetValues(typeof(QelmStatus)).Cast<QelmStatus>().Select(code => (int)code));
        }

        [Test]
        public void TheVersionIsThatOfTheHeader()
        {
            IEnumerable<string> parts = new[] { "MAJOR", "MINOR", "PATCH" }
                .Select(part => Regex.Match(Header(), "QELM_VERSION_" + part + @" (\d+)").Groups[1].Value);
            string version = string.Join(".", parts);
            Assembly assembly = typeof(MeshSystem).Assembly;
            Assert.AreEqual(version + ".0", assembly.GetName().Version.ToString());
            Assert.AreEqual(version + ".0", Attribute<AssemblyFileVersionAttribute>(assembly).Version);
            Assert.AreEqual(version,
                Attribute<AssemblyInformationalVersionAttribute>(assembly).InformationalVersion);
        }

        [Test]
        public void TheAssemblyNeedsOnlyMscorlib()
        {
            // .NET Framework 4.x, Mono and .NET all have or forward it; anything more might be missing somewhere.
            CollectionAssert.AreEqual(new[] { "mscorlib, Version=4.0.0.0" },
                typeof(MeshSystem).Assembly.GetReferencedAssemblies()
                    .Select(name => name.Name + ", Version=" + name.Version));
        }

        [Test]
        public void NoNativeTypeIsPublic()
        {
            foreach (Type type in typeof(MeshSystem).Assembly.GetExportedTypes())
            {
                Assert.IsFalse(typeof(SafeHandle).IsAssignableFrom(type), type.Name);
                foreach (MethodInfo method in type.GetMethods())
                {
                    Assert.IsFalse(method.GetParameters().Any(parameter => parameter.ParameterType.IsPointer),
                        type.Name + "." + method.Name);
                }
            }
        }

        private static bool HasString(MethodInfo method)
        {
            return method.GetParameters().Any(parameter => parameter.ParameterType == typeof(string));
        }

        private static string[] Signature(MethodInfo method)
        {
            return new[] { method.ReturnType.Name }
                .Concat(method.GetParameters().Select(parameter => parameter.ParameterType.Name))
                .ToArray();
        }

        /// <summary>Result and parameters of a function of the header, in the spelling used here.</summary>
        private static string[] HeaderSignature(string name)
        {
            Match match = Regex.Match(Header(), @"^QELM_API ([\w\s*]*?) ?" + name + @"\(([^)]*)\);",
                RegexOptions.Multiline);
            Assert.IsTrue(match.Success, name + " is in the header");
            string parameters = match.Groups[2].Value.Trim();
            IEnumerable<string> types = parameters == "void"
                ? new string[0]
                : parameters.Split(',').Select(parameter => Regex.Replace(parameter.Trim(), @"\s*\w+$", ""));
            // A string that is handed out stays the library's: it is read and not freed.
            string result = match.Groups[1].Value.StartsWith("const char") ? "void*" : match.Groups[1].Value;
            return new[] { result }
                .Concat(types)
                .Select(type => SpellingOf[Regex.Replace(type, @"\s+", " ").Replace(" *", "*")])
                .ToArray();
        }

        private static Type[] Records()
        {
            return typeof(MeshSystem).Assembly.GetTypes()
                .Where(type => type.IsValueType && !type.IsEnum && type.IsNotPublic && type.Namespace == "Qelm"
                    && type.Name != "HandleLease")
                .ToArray();
        }

        private static IEnumerable<string> Layout(Type record)
        {
            yield return record.Name + " " + Marshal.SizeOf(record);
            foreach (FieldInfo field in record.GetFields(BindingFlags.Instance | BindingFlags.NonPublic))
            {
                int size = field.FieldType.IsPointer ? IntPtr.Size : Marshal.SizeOf(field.FieldType);
                IntPtr offset = Marshal.OffsetOf(record, field.Name);
                yield return record.Name + "." + field.Name + " " + offset + " " + size;
            }
        }

        private static T Attribute<T>(Assembly assembly)
        {
            return (T)assembly.GetCustomAttributes(typeof(T), false).Single();
        }

        private static string Header()
        {
            return File.ReadAllText(Source("include/qelm.h"));
        }

        private static IEnumerable<string> Lines(string file)
        {
            return File.ReadAllLines(Source(file)).Where(line => line.Length > 0);
        }

        private static string Source(string file)
        {
            return Path.Combine(Environment.GetEnvironmentVariable("QELM_SOURCE_DIR"), file);
        }
    }
}

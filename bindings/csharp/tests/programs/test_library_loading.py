"""What a program says that has no native library, or an unfit one."""

from built import LIBRARY

SOURCE = """
using System;
using Qelm;
static class Program
{
    static void Main()
    {
        for (int k = 0; k < 2; ++k)
        {
            try
            {
                Console.WriteLine(SphereCodec.Decode(0.5f, 0.5f, 0.7f));
            }
            catch (DllNotFoundException error)
            {
                Console.WriteLine(error.Message);
                Console.WriteLine("inner: " + error.InnerException.GetType().Name);
            }
        }
    }
}
"""


def test_a_missing_library_names_the_file_the_folders_and_64_bit_each_time(mono):
    mono.compile(SOURCE)
    code, output, _ = mono.run()
    assert code == 0
    assert output.count("libqelm.so could not be loaded") == 2
    assert output.count(f"not in: {mono.folder}") >= 2
    assert "runtimes/linux-x64/native" in output
    assert "64-bit only" in output and "process is 64-bit" in output
    assert "LD_LIBRARY_PATH" in output
    assert output.count("inner: DllNotFoundException") == 2


def test_a_file_that_is_no_library_is_said_to_be_found_but_not_loadable(mono):
    mono.compile(SOURCE)
    (mono.folder / "libqelm.so").write_text("not a library")
    code, output, _ = mono.run()
    assert code == 0
    assert f"found, but not loadable: {mono.folder}" in output


def test_with_the_library_beside_it_the_same_program_works(mono):
    mono.compile(SOURCE)
    (mono.folder / "libqelm.so").symlink_to(LIBRARY)
    assert mono.run() == (0, "-1\n-1\n", "")

"""The texts and addresses that a deployment sets reach the program as they are."""

import pathlib
import subprocess

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]

PRINT_ALL = """
#include <cwchar>
#include "deployment.h"
int main() {
  for (const wchar_t* text : {QELM_CREDIT_TEXT, QELM_CREDIT_TARGET, QELM_DOCUMENTATION_TARGET,
                              QELM_EXAMPLES_TARGET}) {
    for (; *text != 0; ++text) std::printf("%x ", static_cast<unsigned>(*text));
    std::printf("\\n");
  }
}
"""


def configure(folder, **values):
    settings = [f"-D{name}={value}" for name, value in values.items()]
    script = folder / "write.cmake"
    script.write_text(
        f'include("{ROOT}/cmake/InfoWindow.cmake")\n'
        f'qelm_configure_deployment("{folder}/deployment.h")\n'
    )
    return subprocess.run(
        ["cmake", *settings, "-P", script], capture_output=True, text=True, cwd=folder
    )


def texts_in_program(folder):
    source = folder / "print.cpp"
    source.write_text("#include <cstdio>\n#include <initializer_list>\n" + PRINT_ALL)
    subprocess.run(["g++", "-std=c++20", source, "-o", folder / "print"], check=True)
    printed = subprocess.run([folder / "print"], check=True, capture_output=True, text=True)
    return ["".join(chr(int(c, 16)) for c in line.split()) for line in printed.stdout.splitlines()]


def test_without_settings_the_defaults_are_neutral(tmp_path):
    assert configure(tmp_path).returncode == 0
    texts = texts_in_program(tmp_path)
    assert texts[0] == "the qelm developers"
    assert all(target.startswith("https://qelm.example.org/") for target in texts[1:])


def test_quotes_backslashes_and_other_letters_arrive(tmp_path):
    credit = 'Müller & "Söhne" ??/ \\n 曲線 %s'
    target = "https://example.org/a?b=\\c&d=%20é"
    assert configure(tmp_path, QELM_CREDIT_TEXT=credit, QELM_EXAMPLES_TARGET=target).returncode == 0
    texts = texts_in_program(tmp_path)
    assert texts[0] == credit
    assert texts[3] == target


@pytest.mark.parametrize(
    "name", ["QELM_CREDIT_TARGET", "QELM_DOCUMENTATION_TARGET", "QELM_EXAMPLES_TARGET"]
)
def test_a_quote_in_an_address_is_refused_by_name(tmp_path, name):
    refused = configure(tmp_path, **{name: 'https://example.org/" & calc'})
    assert refused.returncode != 0
    assert f"{name} holds a double quote" in refused.stderr

"""Conan 2 recipe. From the root of the sources: conan create packaging/conan"""

import os
import re

from conan import ConanFile
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load


class QelmConan(ConanFile):
    name = "qelm"
    description = "Smooth fields between prescribed values on triangle meshes"
    license = "MIT"
    url = homepage = "https://qelm.example.org/"
    topics = ("mesh", "geometry", "laplace", "isolines", "fem")
    package_type = "shared-library"
    settings = "os", "compiler", "build_type", "arch"
    options = {"static_too": [True, False]}
    default_options = {"static_too": False}

    @property
    def _root(self):
        return os.path.normpath(os.path.join(self.recipe_folder, "..", ".."))

    def set_version(self):
        header = load(self, os.path.join(self._root, "include", "qelm.h"))
        parts = ("MAJOR", "MINOR", "PATCH")
        self.version = ".".join(re.search(rf"QELM_VERSION_{part} (\d+)", header).group(1) for part in parts)

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "LICENSE", "README.md", "CHANGELOG.md", "cmake/*", "include/*", "src/*"):
            copy(self, pattern, self._root, self.export_sources_folder)

    def layout(self):
        cmake_layout(self)

    def requirements(self):
        self.requires("eigen/[>=3.4 <6]", visible=False)
        self.requires("nanoflann/[>=1.4 <2]", visible=False)

    def build_requirements(self):
        self.tool_requires("cmake/[>=3.25]")

    def generate(self):
        CMakeDeps(self).generate()
        toolchain = CMakeToolchain(self)
        for name in ("TOOLS", "TESTS", "CSHARP"):
            toolchain.cache_variables[f"QELM_BUILD_{name}"] = False
        toolchain.cache_variables["QELM_STATIC"] = bool(self.options.static_too)
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        copy(self, "LICENSE", self.source_folder, os.path.join(self.package_folder, "licenses"))
        CMake(self).install()

    def package_info(self):
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs = [os.path.join("lib", "cmake", "qelm")]
        self.cpp_info.libs = ["qelm"]

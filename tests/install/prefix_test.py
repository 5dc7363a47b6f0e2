"""Uses an installation like an application developer: prefix_test.py CMAKE BUILD LIBDIR C-COMPILER C++-COMPILER"""
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import unittest

sys.path.append(str(pathlib.Path(__file__).parent.parent / "app"))
import pictures

CMAKE, BUILD, LIBDIR, C_COMPILER, CXX_COMPILER = sys.argv[1:]
EXAMPLES = "share/doc/catalogcore/examples"
PROGRAMS = {"catalogue": [C_COMPILER, "catalogue.c"], "scene": [CXX_COMPILER, "-std=c++17", "scene.cpp"],
            "file_buffer": [CXX_COMPILER, "-std=c++20", "file_buffer.cpp"]}


class PrefixTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name).resolve()

    def run_program(self, *command, folder=None, **environment):
        done = subprocess.run(list(map(str, command)), cwd=folder or self.root, env={**os.environ, **environment},
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.assertEqual(done.returncode, 0, (command, done.stdout))
        return done.stdout

    def flags(self, prefix):
        return shlex.split(self.run_program("pkg-config", "--cflags", "--libs", "catalogcore",
                                            PKG_CONFIG_PATH=str(prefix / LIBDIR / "pkgconfig")))

    def build_by_hand(self, prefix, program):
        self.run_program(*PROGRAMS[program], "-o", self.root / program, *self.flags(prefix), folder=prefix / EXAMPLES)

    def run_examples(self, prefix, folder):
        for program in PROGRAMS:
            self.run_program(folder / program, self.root, LD_LIBRARY_PATH=str(prefix / LIBDIR))

    def check_embedding_guide(self, prefix):
        """Builds the C programs of the guide, the README's example, and checks the output of the first program."""
        guide = (prefix / EXAMPLES / "../embedding.md").read_text()
        programs = dict(re.findall(r"```c\n(/\* (?:\w+)\.c \*/)(.*?)```", guide, re.S))
        flags = self.flags(prefix)
        for name in ("first", "walk"):
            (self.root / f"{name}.c").write_text(programs[f"/* {name}.c */"])
            self.run_program(C_COMPILER, "-std=c11", "-Wall", "-Wextra", "-Werror", "-c", f"{name}.c", *flags)
        readme = (pathlib.Path(__file__).parents[2] / "README.md").read_text()
        (self.root / "readme.cpp").write_text(re.search(r"```cpp\n(.*?)```", readme, re.S)[1])
        self.run_program(CXX_COMPILER, "-std=c++20", "-Wall", "-Wextra", "-Werror", "-c", "readme.cpp", *flags)
        project = self.root / "project"
        project.mkdir()
        (project / "CMakeLists.txt").write_text(re.search(r"```cmake\n(.*?)```", guide, re.S)[1])
        (self.root / "first.c").rename(project / "first.c")
        self.run_program(CMAKE, "-S", project, "-B", project, f"-DCMAKE_PREFIX_PATH={prefix}",
                         f"-DCMAKE_C_COMPILER={C_COMPILER}")
        self.run_program(CMAKE, "--build", project)
        letter = self.root / "letter.png"
        letter.touch()
        for _ in range(2):  # the second run loads the catalogue of the first
            printed = self.run_program(project / "first", letter, self.root, LD_LIBRARY_PATH=str(prefix / LIBDIR))
            self.assertEqual(printed, f"{letter}: 2030000\n")

    def test_programs_are_built_and_run_wherever_the_prefix_is(self):
        first, moved, built = self.root / "first", self.root / "far/moved", self.root / "built"
        self.run_program(CMAKE, "--install", BUILD, "--prefix", first)
        for program in PROGRAMS:
            self.build_by_hand(first, program)
        self.check_embedding_guide(first)
        self.run_examples(first, self.root)

        moved.parent.mkdir()
        first.rename(moved)
        self.run_examples(moved, self.root)
        self.build_by_hand(moved, "catalogue")
        self.run_program(CMAKE, "-G", "Ninja", "-S", moved / EXAMPLES, "-B", built, f"-DCMAKE_PREFIX_PATH={moved}",
                         f"-DCMAKE_C_COMPILER={C_COMPILER}", f"-DCMAKE_CXX_COMPILER={CXX_COMPILER}")
        self.run_program(CMAKE, "--build", built)  # with the default language standards
        self.run_examples(moved, built)
        refused = subprocess.run([CXX_COMPILER, "-std=c++17", "-I", moved / "include", "-fsyntax-only", "-xc++",
                                  moved / "include/catalogcore.hpp"], capture_output=True, text=True)
        self.assertIn("needs C++20", refused.stderr)

        (self.root / "page.png").write_bytes(pictures.page())
        self.assertIn("2030000", self.run_program(moved / "bin/catalogcore", "classify", "page.png"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

"""The Debian packages, installed in a root of their own: packages_test.py CPACK BUILD

The root has only the installed packages on which they depend, dpkg and a compiler, so an undeclared dependency is found.
Without permission to make a root (neither root nor user namespaces) only the contents of the packages are checked.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.append(str(pathlib.Path(__file__).parent.parent / "app"))
import pictures

CPACK, BUILD = sys.argv[1:]
AS_ROOT = [] if os.geteuid() == 0 else ["unshare", "--map-root-user"]
COMPILER = ["gcc", "libc6-dev", "pkg-config"]


def run(*command, **options):
    done = subprocess.run(list(map(str, command)), stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)
    if done.returncode:
        raise AssertionError((command, done.returncode, done.stdout))
    return done.stdout


def names(relation, separator=","):
    return [re.sub(r"[ (:].*", "", part.strip()) for part in relation.split(separator) if part.strip()]


def closure(*relations):
    """The installed packages that satisfy the relations, the essential packages, and all their dependencies."""
    fields = "${Status}|${Essential}|${Package}|${Provides}|${Pre-Depends},${Depends}\n".replace("|", "\t")
    depends, providers, found, left = {}, {}, set(), list(relations)
    for line in run("dpkg-query", "-W", "-f", fields).splitlines():
        status, essential, name, provides, relation = line.split("\t")
        if status == "install ok installed":
            depends[name] = relation
            providers[name] = name
            for provided in names(provides):
                providers.setdefault(provided, name)
            left += [name] * (essential == "yes")
    while left:
        for alternatives in filter(None, left.pop().split(",")):
            package = next((providers[name] for name in names(alternatives, "|") if name in providers), None)
            if package and package not in found:
                found.add(package)
                left.append(depends[package])
    return sorted(found)


def make_root(root, packages):
    """Makes a root directory with only these packages."""
    for name in ("bin", "lib", "lib32", "lib64", "libx32", "sbin"):
        if os.path.islink("/" + name):
            (root / "usr" / name).mkdir(parents=True)
            (root / name).symlink_to("usr/" + name)
    listed = subprocess.run(["dpkg-query", "-L", *packages], stdout=subprocess.PIPE, text=True).stdout
    files = root.with_name("files")
    files.write_text("".join(name[1:] + "\n" for name in sorted(set(re.findall("^/.+$", listed, re.M)))))
    unused = [f"--exclude=usr/share/{name}/*" for name in ("doc", "i18n", "icons", "info", "locale", "man", "zoneinfo")]
    with subprocess.Popen(["tar", "-C", "/", "-c", "--no-recursion", "--ignore-failed-read", *unused, "-T", files],
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as archive:
        run("tar", "-C", root, "-x", "--no-same-owner", stdin=archive.stdout)

    own, database = pathlib.Path("/var/lib/dpkg"), root / "var/lib/dpkg"
    for folder in ("info", "updates", "triggers", "alternatives"):
        (database / folder).mkdir(parents=True, exist_ok=True)
    (database / "status").write_text(run("dpkg-query", "-s", *packages))
    for file in (own / "info").iterdir():
        if file.stem.split(":")[0] in packages or file.name == "format":
            shutil.copy(file, database / "info")
    (database / "triggers/ldconfig").write_text("libc-bin\n")
    for file in (own / "alternatives").iterdir():  # links that package scripts make, such as liblapack.so.3
        link, chosen = file.read_text().split("\n")[1], pathlib.Path("/etc/alternatives", file.name)
        if chosen.exists() and root.joinpath(os.readlink(chosen)[1:]).exists():
            (root / "etc/alternatives").mkdir(parents=True, exist_ok=True)
            for path, target in ((chosen, os.readlink(chosen)), (link, chosen)):
                root.joinpath(str(path)[1:]).unlink(missing_ok=True)
                root.joinpath(str(path)[1:]).symlink_to(target)


class PackagesTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir=BUILD)  # /tmp may be mounted noexec
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        run(CPACK, "--config", pathlib.Path(BUILD, "CPackConfig.cmake"), "-B", self.folder / "made")
        self.packages = {file.name.split("_")[0]: file for file in (self.folder / "made").glob("*.deb")}

    def check_contents(self):
        self.assertEqual(sorted(self.packages), ["catalogcore", "libcatalogcore-dev", "libcatalogcore1",
                                                 "python3-catalogcore"])
        holds = {
            "catalogcore": ["usr/bin/catalogcore", "usr/share/man/man1/catalogcore.1",
                            "usr/share/bash-completion/completions/catalogcore"],
            "libcatalogcore-dev": ["usr/include/catalogcore.h", "usr/include/catalogcore/platform/CoreFoundation/CFString.h"],
            "python3-catalogcore": ["usr/lib/python3/dist-packages/catalogcore/__init__.py"],
            "libcatalogcore1": ["usr/share/org.catalogcore.library/brennparam.dat"]}
        version = run("dpkg-deb", "-f", self.packages["libcatalogcore1"], "Version").strip()
        for name, file in self.packages.items():
            run("dpkg-deb", "-x", file, self.folder / "unpacked")
            holds[name] += [f"usr/share/doc/{name}/copyright", f"usr/share/doc/{name}/changelog.gz"]
            self.assertEqual([path for path in holds[name] if f"./{path}\n" not in run("dpkg-deb", "-c", file)], [])
            if name != "libcatalogcore1":
                relation = ">=" if name == "python3-catalogcore" else "="
                self.assertIn(f"libcatalogcore1 ({relation} {version})", run("dpkg-deb", "-f", file, "Depends"))
        run("dpkg-deb", "-e", self.packages["libcatalogcore1"], self.folder / "control")
        self.assertEqual((self.folder / "control/triggers").read_text(), "activate-noawait ldconfig\n")
        self.assertIn(f"libcatalogcore 1 libcatalogcore1 (>= {version})", (self.folder / "control/shlibs").read_text())
        for program in [self.folder / "unpacked/usr/bin/catalogcore", *self.folder.glob("unpacked/usr/lib/**/*.so.1")]:
            self.check_binary(program)

    def check_binary(self, program):
        """The program does not refer to the build tree and is hardened."""
        dynamic, segments, symbols = (run("readelf", "-W", option, program) for option in ("-d", "-l", "--dyn-syms"))
        self.assertNotRegex(dynamic, "RUNPATH|RPATH")
        self.assertRegex(dynamic, r"FLAGS_1\).*\bNOW\b")
        self.assertIn("GNU_RELRO", segments)
        self.assertRegex(segments, r"GNU_STACK .* RW +0x")
        self.assertIn("__stack_chk_fail@", symbols)
        if program.name == "catalogcore":  # the libraries have no calls that need a check
            self.assertRegex(dynamic, r"FLAGS_1\).*\bPIE\b")
            self.assertRegex(symbols, r" __(?!stack)\w+_chk@")

    def test_packages_install_and_work_and_leave_nothing(self):
        self.check_contents()
        if subprocess.run([*AS_ROOT, "chroot", "/", "true"], stderr=subprocess.DEVNULL).returncode:
            print("only the contents of the packages were checked: a root to install them in cannot be made here")
            return
        depends = [run("dpkg-deb", "-f", file, "Depends") for file in self.packages.values()]
        root = self.folder / "root"
        (root / "work").mkdir(parents=True)
        (root / "dev").mkdir()
        (root / "dev/null").touch()
        (root / "proc/self").mkdir(parents=True)  # mounting /proc needs more rights; the command runs itself from it
        (root / "proc/self/exe").symlink_to("/usr/bin/catalogcore")
        (root / "work/page.png").write_bytes(pictures.page())
        make_root(root, closure(*depends, *COMPILER))
        for file in self.packages.values():
            shutil.copy(file, root / "work")

        def inside(script):
            environment = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "HOME": "/work", "DEBIAN_FRONTEND": "noninteractive"}
            return run(*AS_ROOT, "chroot", root, "sh", "-ec", "cd /work\n" + script, env=environment)

        inside("dpkg -i *.deb")
        self.assertRegex(inside("catalogcore --version"), r"\b1\.\d+\.\d+")
        self.assertIn("2030000", inside("catalogcore classify page.png"))
        self.assertIn("2000000", inside("python3 -c 'import catalogcore; print(int(catalogcore.Preset.DOCUMENT))'"))
        inside("""cp /usr/share/doc/catalogcore/examples/catalogue.c .
                  gcc catalogue.c -o catalogue $(pkg-config --cflags --libs catalogcore)
                  ./catalogue /work""")
        inside(f"dpkg --purge {' '.join(self.packages)}")
        self.assertEqual([path for path in root.glob("usr/**/*catalogcore*")], [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

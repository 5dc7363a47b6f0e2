"""Fails unless every public name of the headers in include/ is documented: reference_test.py DOXYGEN OUTPUT-FOLDER.

A name is documented if one of its declarations is, so overloads need one comment. The comment of a class covers its constructors,
destructor and assignments, and the comment of a file covers the namespace.
"""
import collections
import pathlib
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree

doxygen, output = sys.argv[1:]
project = pathlib.Path(__file__).parents[2]
shutil.rmtree(output, ignore_errors=True)
pathlib.Path(output).mkdir(parents=True)
settings = f"""
@INCLUDE = docs/Doxyfile
INPUT = include
OUTPUT_DIRECTORY = "{output}"
GENERATE_HTML = NO
GENERATE_XML = YES
EXTRACT_ALL = YES
WARN_IF_UNDOCUMENTED = NO
"""
subprocess.run([doxygen, "-"], input=settings, text=True, cwd=project, check=True)


def is_documented(element):
    return any("".join(element.find(kind).itertext()).strip() for kind in ("briefdescription", "detaileddescription"))


documented = collections.defaultdict(bool)
for file in pathlib.Path(output, "xml").glob("*.xml"):
    for compound in xml.etree.ElementTree.parse(file).iter("compounddef"):
        kind, scope = compound.get("kind"), compound.findtext("compoundname")
        if kind not in ("file", "namespace", "struct", "class", "union", "concept"):
            continue
        if kind != "namespace":
            documented[scope] |= is_documented(compound)
        prefix, own = "" if kind == "file" else scope + "::", scope.rpartition("::")[2]
        for member in compound.iter("memberdef"):
            if member.get("prot") == "private":
                continue
            name = member.findtext("name")
            is_guard = member.get("kind") == "define" and name.startswith("CATALOGCORE_") and name.endswith("_")
            if not name or name.startswith("@") or is_guard or name in (own, "~" + own, "operator="):
                name = ""
            else:
                documented[prefix + name] |= is_documented(member)
            for value in member.iter("enumvalue"):
                owner = name + "::" if member.get("strong") == "yes" else ""
                documented[prefix + owner + value.findtext("name")] |= is_documented(value)

for name in re.findall(r"\b(IDX\w+);", (project / "src" / "catalogcore.map").read_text()):
    documented[name] |= False  # a name that Doxygen did not find is missing, too
missing = sorted(name for name, has_comment in documented.items() if not has_comment)
print(f"{len(documented) - len(missing)} of {len(documented)} public names are documented")
if missing:
    sys.exit("\n  ".join(["reference_test.py: these names need a comment before them or after them on the same line:", *missing]))

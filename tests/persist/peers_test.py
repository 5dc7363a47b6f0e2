"""Other readers and writers of property lists on the catalogue's own files: peers_test.py LIBRARY CF_LIBRARY PLISTUTIL."""
import ctypes
import os
import plistlib
import subprocess
import sys
import tempfile

library_path, cf_path, plistutil = sys.argv[1:]
cf = ctypes.CDLL(cf_path, mode=ctypes.RTLD_GLOBAL)
library = ctypes.CDLL(library_path)
cf.CFStringCreateWithCString.restype = ctypes.c_void_p
cf.CFStringCreateWithCString.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_uint32]


class Item(ctypes.Structure):
    _fields_ = [("operation", ctypes.c_uint8), ("name", ctypes.c_void_p), ("path", ctypes.c_void_p),
                ("index", ctypes.c_int32), ("attribute", ctypes.c_uint8), ("mask", ctypes.c_uint32),
                ("state", ctypes.c_uint8)]


def variable(text):
    return ctypes.byref(ctypes.c_void_p(cf.CFStringCreateWithCString(None, text.encode(), 0x08000100)))


def check(holds, what):
    if not holds:
        sys.exit("peers_test.py: " + what)


def begin(folder):
    check(library.IDXInitialize() == 0, "IDXInitialize fails")
    check(library.IDXSetFilePath(variable(folder)) == 0, "IDXSetFilePath fails")


def status_of_index(number):
    return library.IDXSearchIndex(ctypes.byref(Item(index=number, mask=4)))


with tempfile.TemporaryDirectory() as folder:
    file = os.path.join(folder, "file")
    begin(folder)
    name = ctypes.c_void_p(cf.CFStringCreateWithCString(None, "Beach, ä <&>".encode(), 0x08000100))
    item = Item(name=ctypes.cast(ctypes.byref(name), ctypes.c_void_p), index=1000000, mask=1 | 4)
    check(library.IDXAddIndex(ctypes.byref(item)) == 0, "IDXAddIndex fails")
    check(library.IDXWriteIndexFile(variable("file")) == 0, "IDXWriteIndexFile fails")

    # What we write, less its final zero byte.
    written = open(file, "rb").read()
    check(written.endswith(b"</plist>\n\0"), "the file does not end as it should")
    payload = "CatalogCoreVer1.0\n1/10,0,Beach, ä <&>\n\0".encode()
    check(plistlib.loads(written[:-1]) == {"IDXIndex": payload}, "plistlib reads something else")
    open(file, "wb").write(written[:-1])
    binary = os.path.join(folder, "binary")
    subprocess.run([plistutil, "-i", file, "-o", binary, "-f", "bin"], check=True)
    check(plistlib.load(open(binary, "rb")) == {"IDXIndex": payload}, "plistutil reads something else")

    # What they write, other entries of 100 MB included, which come through a write of ours.
    others = {"big": os.urandom(75 * 1000 * 1000), "list": [1, -2.5, True, {"k": "v"}], "a": ""}
    plistlib.dump({"IDXIndex": payload, **others}, open(file, "wb"))
    begin(folder)
    check(library.IDXLoadIndexFile(variable("file")) == 0 and status_of_index(1100000) == 0, "plistlib's is not loaded")
    check(library.IDXWriteImageFile(variable("file")) == 0, "IDXWriteImageFile fails")
    rewritten = plistlib.loads(open(file, "rb").read()[:-1])
    check(rewritten == {"IDXIndex": payload, "IDXImage": b"CatalogCoreVer1.0\n\0", **others}, "other entries change")
    subprocess.run([plistutil, "-i", binary, "-o", file, "-f", "xml"], check=True)
    begin(folder)
    check(library.IDXLoadIndexFile(variable("file")) == 0 and status_of_index(1100000) == 0, "plistutil's is not loaded")
    library.IDXUninitialize()

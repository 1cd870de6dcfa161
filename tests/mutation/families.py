"""The families of the library, and the files that their arithmetic is in."""

import collections
import fnmatch
import platform

# Files by patterns. What is built: the library, tried by the release build's program of tests, or
# the program of tests itself, of headers that it includes. `vectors` is the build's MVK_SIMD, and
# `optimised` how far: what takes less time, to compile it well or to run it slowly.
Part = collections.namedtuple("Part", "patterns target vectors optimised", defaults=["auto", "-O2"])
Family = collections.namedtuple("Family", "name parts")

LIBRARY = "mavokresampler"
# A table of data has tests of its own and no arithmetic; a host's adapter has none either.
LEFT_OUT = ["filterbanks/prototype_data.h", "component/acli.cpp"]
OWN_VECTORS = {"x86_64": ["core/simd/avx2.h"], "aarch64": ["core/simd/neon.h"]}


def library(name, **how):
    return Family(name, [Part([f"{name}/*"], LIBRARY, **how)])


def core():
    headers = ["core/*.h", "core/simd/scalar.h", "core/simd/wide8.h"]
    own = OWN_VECTORS.get(platform.machine())
    portable = Part(["core/simd/portable.h", "core/simd/pair8.h"], "test_core", "portable", "-O1")
    if not own:
        return Family("core", [portable._replace(patterns=headers + portable.patterns)])
    return Family("core", [Part(headers + own, "test_core", optimised="-O1"), portable])


FAMILIES = {family.name: family for family in [
    library("component"), library("limiter"), library("kernels"), library("dct"),
    library("filterbanks"), library("services"), library("fft", optimised="-O1"), core()]}


def files_of(root, part):
    """Paths from the root, in order."""
    found = {path.relative_to(root).as_posix()
             for pattern in part.patterns for path in root.glob(pattern)}
    return sorted(path for path in found if path.endswith((".h", ".cpp")) and
                  not any(fnmatch.fnmatch(path, pattern) for pattern in LEFT_OUT))

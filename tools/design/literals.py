"""Writes and reads filterbanks/prototype_data.h."""

import os
import re

import numpy as np

HEADER = """\
// The taps of the prototypes, written by tools/design/prototypes; docs/prototypes.md
// tells how they come about.
//
// The symmetric ones, of 64 bands, are halves: taps 0 to the centre, 64 times the order.
// The asymmetric ones, of 64, 128 and 256 bands, are whole, in the order of time in which
// the synthesis reads them backwards: their peak is in the last third.
#pragma once

namespace mvk {

// clang-format off
"""
FOOTER = """\
// clang-format on

}  // namespace mvk
"""


def text(arrays):
    parts = [HEADER]
    for name, taps in arrays.items():
        parts.append(f"inline constexpr double {name}[{len(taps)}] = {{\n")
        values = [f"{tap + 0.0:.15f}," for tap in taps]      # no negative zeros
        parts += ["  " + " ".join(values[i:i + 5]) + "\n" for i in range(0, len(values), 5)]
        parts.append("};\n\n")
    return "".join(parts) + FOOTER


def write(path, arrays):
    """Puts the file in place whole, or leaves the one that is there."""
    temporary = path.with_name(path.name + f".{os.getpid()}")
    try:
        temporary.write_text(text(arrays))
        temporary.replace(path)
    finally:
        temporary.unlink(missing_ok=True)


def read(path):
    found = re.findall(r"double (\w+)\[\d+\] = \{([^}]*)\}", path.read_text())
    return {name: np.array([float(value) for value in values.split(",")[:-1]])
            for name, values in found}

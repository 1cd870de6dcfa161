"""What the pictures of the built library have in common: their options, look and file."""

import argparse
import pathlib

from matplotlib import pyplot

ROOT = pathlib.Path(__file__).resolve().parents[2]


def parse_arguments(name, description, picture):
    """The options of the script `name`, which draws `picture`, a file of docs/images."""
    parser = argparse.ArgumentParser(
        prog=name, description=description,
        formatter_class=argparse.RawDescriptionHelpFormatter,
        epilog=f"examples:\n  tools/plots/{name}\n"
               f"  tools/plots/{name} --library build/release/libmavokresampler.so "
               f"-o {name}.svg")
    parser.add_argument("-o", "--output", type=pathlib.Path, metavar="SVG",
                        default=ROOT / "docs/images" / picture,
                        help=f"the picture; docs/images/{picture} if not given")
    parser.add_argument("--library", type=pathlib.Path, metavar="PATH",
                        default=ROOT / "build/libmavokresampler.so",
                        help="the built library; build/libmavokresampler.so if not given")
    return parser.parse_args()


def blank(name):
    pyplot.rcParams.update({
        "svg.hashsalt": name,  # names of the picture's elements, else random
        "font.family": "DejaVu Sans",
        "font.size": 9,
    })
    return pyplot.figure(figsize=(9, 8.2), layout="constrained")


def style(axes, title, ylabel, xlabel=None):
    axes.set_title(title, loc="left", fontsize=10, fontweight="bold")
    axes.set_ylabel(ylabel)
    if xlabel:
        axes.set_xlabel(xlabel)
    axes.grid(True, color="#e4e4e4", linewidth=0.6)
    axes.set_axisbelow(True)
    for side in ("top", "right"):
        axes.spines[side].set_visible(False)


def save(figure, path):
    path.parent.mkdir(parents=True, exist_ok=True)
    figure.savefig(path, format="svg", metadata={"Date": None, "Creator": None})

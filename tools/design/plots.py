"""The pictures of docs/prototypes.md."""

import io
import re

import numpy as np
from matplotlib import pyplot

import asymmetric
import measures
import symmetric
from families import FAMILIES

COLOURS = {"P5_p64orv301": "#1a5fb4", "P4": "#e66100", "P5": "#2a9d5c", "P4_319SC": "#9141ac"}
GREY = "#9aa0a6"


def style(axes, title, xlabel, ylabel):
    axes.set_title(title, loc="left", fontsize=10, fontweight="bold")
    axes.set_xlabel(xlabel)
    axes.set_ylabel(ylabel)
    axes.grid(True, color="#e4e4e4", linewidth=0.6)
    axes.set_axisbelow(True)
    for side in ("top", "right"):
        axes.spines[side].set_visible(False)


def stored_taps(arrays):
    """Taps in single precision by the families' names, those of 64 bands."""
    taps = {family.name: symmetric.as_stored(arrays[family.array])[:-1] for family in FAMILIES}
    taps["P4_319SC"] = np.float32(arrays["p4_319sc_64"]).astype(float)[::-1]
    return taps


def draw_shapes(axes, taps):
    style(axes, "Taps", "time after the newest sample, blocks", "tap")
    for name, values in taps.items():
        axes.plot((np.arange(len(values))[::4] + 0.5) / 64, values[::4], color=COLOURS[name],
                  linewidth=1.4, label=name)
    axes.set_xlim(0, 10)
    axes.legend(loc="upper right", fontsize=8.5, frameon=False)


def draw_responses(figure, taps):
    panels = figure.subplots(2, 2, sharex=True, sharey=True)
    for axes, (name, values) in zip(panels.flat, taps.items()):
        style(axes, name, "", "")
        frequencies, magnitude = measures.response(values, 64)
        shown = (frequencies < 6) & (np.arange(len(frequencies)) % 16 == 0)
        axes.plot(frequencies[shown], measures.decibels(magnitude[shown]), color=COLOURS[name],
                  linewidth=1.0)
        worst, _ = measures.worst_lobe(values, 64)
        axes.plot([measures.STOP, 6], [worst, worst], color=GREY, linestyle="--", linewidth=1)
        axes.text(5.95, worst + 3, f"{worst:.1f} dB", ha="right", fontsize=8.5, color="#5f6368")
        axes.set_xlim(0, 6)
        axes.set_ylim(-130, 5)
    figure.supxlabel("frequency, widths of a band", fontsize=9)
    figure.supylabel("dB", fontsize=9)


def draw_errors(figure, taps):
    """The transfer of analysis and synthesis repeats itself with each band."""
    panels = figure.subplots(1, 2, sharey=True)
    style(panels[0], "Distortion", "frequency within a band", "dB")
    style(panels[1], "Aliases", "frequency within a band", "")
    frequencies = np.linspace(0, 1, 161)
    for name, values in taps.items():
        centre = 319 if name == "P4_319SC" else len(values)
        transfer = sum(np.exp(-2j * np.pi * k * frequencies)[:, None] * sums
                       for k, sums in measures.chain_sums(values, 64, centre).items())
        mean = transfer.mean(axis=1)
        spread = np.sqrt(np.mean(np.abs(transfer - mean[:, None]) ** 2, axis=1))
        for axes, level in zip(panels, (np.abs(mean - 1), spread)):
            axes.plot(frequencies, measures.decibels(level), color=COLOURS[name], linewidth=1.2,
                      label=name)
    panels[0].set_xlim(0, 1)
    panels[0].set_ylim(-120, -40)
    panels[1].set_xlim(0, 1)
    panels[1].legend(loc="upper right", fontsize=8.5, ncol=2, frameon=False)


def draw_low_delay(figure, arrays):
    """The three tables of one shape lie on each other; what differs is seen enlarged."""
    shape, peak = figure.subplots(1, 2, gridspec_kw={"width_ratios": (3, 2)})
    style(shape, "P4_319SC in the order of the tables", "time, blocks", "tap")
    style(peak, "around the peak", "time, blocks", "")
    tables = {bands: arrays[f"p4_319sc_{bands}"] for bands in asymmetric.PEAKS}
    instants = asymmetric.instants(64)
    shape.plot(instants[::4], tables[64][::4], color=COLOURS["P4_319SC"], linewidth=1.4)
    shape.set_xlim(0, 10)
    for (bands, table), size in zip(tables.items(), (7, 4.5, 2.5)):
        instants = asymmetric.instants(bands)
        near = np.abs(instants - 7.267) < 0.045
        peak.plot(instants[near], table[near], "o", markersize=size, label=f"{bands} bands",
                  color={64: GREY, 128: "#e66100", 256: "#1a5fb4"}[bands])
    peak.legend(loc="lower center", fontsize=8.5, frameon=False)


def draw_all(arrays, folder):
    pyplot.rcParams.update({
        "svg.hashsalt": "prototypes",  # names of the pictures' elements, else random
        "font.family": "DejaVu Sans",
        "font.size": 9,
        "svg.fonttype": "none",  # text stays text
    })
    folder.mkdir(parents=True, exist_ok=True)
    taps = stored_taps(arrays)

    def save(figure, name):
        picture = io.StringIO()
        figure.savefig(picture, format="svg", metadata={"Date": None, "Creator": None})
        pyplot.close(figure)
        # Hundredths of a point are fine enough, and a third of the size.
        short = re.sub(r"(\.\d\d)\d{3,}", r"\1", picture.getvalue())
        (folder / f"prototype-{name}.svg").write_text(short)

    figure, axes = pyplot.subplots(figsize=(9, 3.2), layout="constrained")
    draw_shapes(axes, taps)
    save(figure, "taps")
    for name, height, draw in (("responses", 5.6, lambda f: draw_responses(f, taps)),
                               ("errors", 3.4, lambda f: draw_errors(f, taps)),
                               ("low-delay", 3.2, lambda f: draw_low_delay(f, arrays))):
        figure = pyplot.figure(figsize=(9, height), layout="constrained")
        draw(figure)
        save(figure, name)

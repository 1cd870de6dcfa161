"""Charts of the performance report: ratios of times, beside their goals."""

import io

import matplotlib

import files

matplotlib.use("svg")
matplotlib.rcParams.update({
    "svg.hashsalt": "mavokresampler", "svg.fonttype": "none", "font.size": 8,
    "axes.spines.top": False, "axes.spines.right": False, "axes.spines.left": False,
    "legend.frameon": False})

from matplotlib import pyplot, ticker  # noqa: E402  the backend comes first

MET, MISSED = "#1a5fb4", "#c01c28"
CONTENDERS = ["#1a5fb4", "#c64600", "#26a269", "#813d9c", "#986a44", "#5e5c64", "#a51d2d"]
ROW, EDGE = 0.2, 0.9  # inches


def _figure(rows, labels, caption):
    figure, axes = pyplot.subplots(figsize=(7.5, ROW * rows + EDGE), layout="constrained")
    axes.set_xscale("log", base=2)
    axes.xaxis.set_major_formatter(ticker.FuncFormatter(lambda x, _: f"{x:g}"))
    axes.set_xlabel(caption)
    axes.set_yticks(range(rows), labels)
    axes.set_ylim(rows - 0.5, -0.5)
    axes.tick_params(axis="y", length=0)
    axes.grid(axis="both", color="#e0e0e0", linewidth=0.5)
    axes.set_axisbelow(True)
    axes.axvline(1, color="#5e5c64", linewidth=1)
    return figure, axes


def _save(figure, path):
    picture = io.StringIO()
    figure.savefig(picture, format="svg", metadata={"Date": None})
    pyplot.close(figure)
    files.write_atomically(path, picture.getvalue())


def goals(path, verdicts):
    """verdicts: [(wording, limit, ratios)]. A dot for each ratio as a multiple of its limit."""
    figure, axes = _figure(len(verdicts),
                           [f"{wording}: {limit:g}" for wording, limit, _ in verdicts],
                           "time as a multiple of the goal's; left of 1 it is met")
    for row, (_, limit, ratios) in enumerate(verdicts):
        for ratio in ratios:
            axes.plot(ratio / limit, row, "o", markersize=4, alpha=0.7, markeredgewidth=0,
                      color=MET if ratio <= limit else MISSED)
    _save(figure, path)


def family(path, rows, limits):
    """rows: {case: {contender: ratio}}; limits: {(case, contender): limit}. A dot for each ratio,
    with a bar at its goal."""
    names = sorted({contender for ratios in rows.values() for contender in ratios})
    colours = dict(zip(names, CONTENDERS))
    figure, axes = _figure(len(rows), list(rows), "the library's time as a multiple of the other's")
    for row, (case, ratios) in enumerate(rows.items()):
        for contender, ratio in ratios.items():
            axes.plot(ratio, row, "o", markersize=4.5, markeredgewidth=0, color=colours[contender])
            if (case, contender) in limits:
                axes.plot(limits[case, contender], row, "|", markersize=9, markeredgewidth=1.5,
                          color=colours[contender])
    handles = [pyplot.Line2D([], [], linestyle="", marker="o", markersize=4.5, color=colours[name],
                             label=name) for name in names]
    if limits:
        handles.append(pyplot.Line2D([], [], linestyle="", marker="|", markersize=9,
                                     markeredgewidth=1.5, color="#5e5c64", label="goal"))
    axes.legend(handles=handles, loc="lower left", bbox_to_anchor=(0, 1), ncols=len(handles),
                columnspacing=1, handletextpad=0.2)
    _save(figure, path)

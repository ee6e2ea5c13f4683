"""The rows as a picture: each program's time as a share of the reference's, on one line a row."""

from measuring.pairs import medians
from measuring.results import COLUMNS, OURS, REFERENCE

COLOURS = {OURS: "#d1495b", REFERENCE: "#30343f", "cp -a, sync, rm -rf": "#8d99ae",
           "rsync -aHAX": "#edae49", "gio": "#00798c", "std::filesystem": "#7b6d8d"}
MARKERS = {OURS: "D", REFERENCE: "|"}


def draw(rows, path):
    """Draws the rows to a PNG file, the first at the top."""
    # The headless backend has to be chosen before the rest is loaded.
    import matplotlib
    matplotlib.use("Agg")
    from matplotlib import pyplot

    figure, axes = pyplot.subplots(figsize=(10, 1.6 + 0.3 * len(rows)))
    lines = range(len(rows), 0, -1)
    for name in COLUMNS:
        shares = [(medians(row.seconds)[name] / medians(row.seconds)[REFERENCE], line)
                  for row, line in zip(rows, lines) if row.seconds.get(name)]
        if shares:
            axes.scatter(*zip(*shares), label=name, color=COLOURS[name],
                         marker=MARKERS.get(name, "o"), zorder=3 if name == OURS else 2,
                         s=46 if name == OURS else 36)
    targets = [(row.share, line) for row, line in zip(rows, lines) if row.share is not None]
    if targets:
        axes.scatter(*zip(*targets), label="target", marker="|", color="#3a7d44", s=220,
                     linewidth=2.5, zorder=1)
    axes.set_yticks(list(lines), [f"{row.place}: {row.title}" for row in rows], fontsize=8)
    axes.set_xscale("log")
    axes.xaxis.set_major_formatter(lambda share, _: f"{share:g}")
    axes.axvline(1, color=COLOURS[REFERENCE], linewidth=0.6)
    axes.grid(axis="both", linewidth=0.3)
    axes.set_xlabel("time as a share of cp -a, mv or rm -rf (less is faster)")
    axes.legend(loc="lower center", bbox_to_anchor=(0.3, 1), ncol=4, fontsize=8, frameon=False)
    figure.tight_layout()
    figure.savefig(path, dpi=110)
    pyplot.close(figure)

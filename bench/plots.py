"""The report's plots."""

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt

from results import LIMITS, OURS, PEERS


def save(path):
    plt.legend()
    plt.tight_layout()
    plt.savefig(path, dpi=100)
    plt.close()


def cost(path, title, unit, lines):
    """`lines`: (label, sigmas, costs, options)."""
    plt.figure(figsize=(8, 5))
    for label, sigmas, costs, options in lines:
        plt.loglog(sigmas, costs, label=label, **options)
    plt.xlabel("σ, pixels")
    plt.ylabel(unit)
    plt.title(title)
    plt.grid(True, which="both", alpha=0.3)
    save(path)


def style(ours):
    return {"marker": "o", "linewidth": 2.5 if ours else 1.2}


def blur_cost(times, path):
    size = "1080x1920" if times.sigmas("1080x1920") else "256x256"
    lines = [(whose, sigmas, [times.blur(whose, size, s) / 1e6 for s in sigmas],
              style(whose == OURS))
             for whose in [OURS, *PEERS] if (sigmas := times.sigmas(size, whose))]
    sigmas = [s for s in times.sigmas(size) if s <= 100]
    lines.append(("taps at peak", sigmas, [times.taps_at_peak(size, s) / 1e6 for s in sigmas],
                  {"color": "black", "linestyle": ":"}))
    cost(path, f"Blur at {size}", "milliseconds", lines)


def limit_share(times, path):
    sizes = times.sizes()
    bars = {name: [times.limit_share(name, s) for s in sizes] for name in LIMITS}
    for sigma in (s for s in (1, 2.5, 5, 10, 25) if times.blur(OURS, sizes[0], s)):
        bars[f"blur\nσ {sigma:g}"] = [times.taps_at_peak(s, sigma) / times.blur(OURS, s, sigma)
                                      for s in sizes]
    plt.figure(figsize=(10, 5))
    width = 0.8 / len(sizes)
    for i, size in enumerate(sizes):
        plt.bar([x + i * width for x in range(len(bars))], [100 * b[i] for b in bars.values()],
                width, label=size)
    plt.axhline(100, color="black", linewidth=0.8)
    plt.xticks([x + 0.4 - width / 2 for x in range(len(bars))], bars)
    plt.ylabel("% of the limit")
    plt.title("Share of the limit: bytes moved, for the blur a multiply-add a tap")
    save(path)


def arm_instructions(calls, columns, path):
    lines = []
    for (whose, core), label in columns.items():
        points = [p for p in calls["points"] if (p["whose"], p["core"]) == (whose, core)]
        lines.append((label, [p["sigma"] for p in points], [p["instructions"] for p in points],
                      style(whose == OURS)))
    cost(path, f"Blur at {calls['size']} on 64-bit ARM: a model", "instructions a pixel", lines)

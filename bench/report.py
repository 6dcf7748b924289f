#!/usr/bin/python3
"""report.py RESULTS OUT.md: writes what one run of scripts/bench measured, with two plots.

RESULTS holds bench.json and java.json, and arm_model.json where the model was run. The plots go to
the folder images beside OUT.md.
"""

import json
import pathlib
import statistics
import sys
import textwrap

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt

OURS, PILLOW = "zoren", "Pillow"
THREE = "cv::GaussianBlur, 3 channels"
GAUSSIANS = ["cv::GaussianBlur", THREE, "cv::sepFilter2D"]
# The project's own targets: times as fast as the best Gaussian peer, or as Pillow, by sigma.
GAUSSIAN_TARGETS = {1: (1.3, 2), 2.5: (2, 3), 5: (2.5, 3.6), 10: (3.5, 5), 25: (4.5, 6.4)}
PILLOW_TARGETS = {100: (1, 1 / 0.7), 150: (1 / 1.4, 1 / 0.9), 1000: (1 / 0.45, 1 / 0.23)}
SMALL_TARGET = 3  # at 256x256, from sigma 5 on
LARGE_SHARE = 0.75  # of the must, at 4000x3000
# Routine: what it is measured against (its limit), and the goal in words, then as a test.
OTHER = {
    "mask": ("change", "85 % of the limit", lambda share, times: share >= 0.85),
    "gray": ("read", "90 % of the limit", lambda share, times: share >= 0.9),
    "cast": ("read", "6 times the peer", lambda share, times: times >= 6),
    "widen": ("copy", "", None),
    "heighten": ("copy", "", None),
}
SIZES = ["64x64", "256x256", "1080x1920", "4000x3000"]


class Times:
    """Processor nanoseconds of every benchmark: median, and quartile spread as a share of it."""

    def __init__(self, path):
        report = json.loads(path.read_text())
        self.context = report["context"]
        self.all, self.memory, self.rates = {}, {}, {}
        for run in report["benchmarks"]:
            name = run["run_name"].split("/")
            name = tuple(part for part in name if ":" not in part or "::" in part)
            if run["run_type"] != "iteration":
                continue
            if name[0] == "memory":
                self.memory[name[1], name[2], float(name[3])] = run["peak_bytes"]
                continue
            self.all.setdefault(name, []).append(run["cpu_time"])
            self.rates.setdefault(name, []).append(run.get("bytes_per_second", 0))

    def median(self, *name):
        return statistics.median(self.all[name]) if name in self.all else None

    def rate(self, *name):
        return statistics.median(self.rates[name])

    def spread(self, *name):
        lower, _, upper = statistics.quantiles(self.all[name], n=4, method="inclusive")
        return (upper - lower) / 2 / self.median(*name)

    def sigmas(self, size, whose=OURS):
        return sorted(float(n[3]) for n in self.all if n[:3] == ("blur", whose, size))

    def blur(self, whose, size, sigma):
        return self.median("blur", whose, size, f"{sigma:g}")


def milliseconds(nanoseconds):
    return "-" if nanoseconds is None else f"{nanoseconds / 1e6:.3g}" \
        if nanoseconds < 1e9 else f"{nanoseconds / 1e6:.0f}"


def ratio(peer, ours):
    return "-" if peer is None else f"{peer / ours:.2f}"


def percent(share):
    return f"{100 * share:.0f} %"


def spread(times, *name):
    return "± " + percent(times.spread(*name))


def table(heads, rows):
    lines = [heads, ["---"] * len(heads), *rows]
    return "".join("| " + " | ".join(map(str, line)) + " |\n" for line in lines) + "\n"


def wrapped(text):
    """Prose in lines of at most 100 columns; tables, headings and pictures as they are."""
    return "\n".join(line if line.startswith(("|", "#", "!")) else
                     textwrap.fill(line, 100, break_long_words=False, break_on_hyphens=False)
                     for line in text.splitlines())


def pixels(size):
    width, height = map(int, size.split("x"))
    return width * height


def floor(times, size, sigma):
    """Nanoseconds of two passes of three channels, a multiply-add a tap, at the measured peak."""
    taps = int(4 * sigma)
    taps -= taps % 2 == 0
    return 6 * pixels(size) * taps / times.rate("limit", "multiply-add", "12288x64") * 1e9


def targets(size, sigma):
    """(whom, must, goal) of a point; None where there is none."""
    whom, must, goal = None, None, None
    if sigma in GAUSSIAN_TARGETS:
        whom, (must, goal) = "Gaussian", GAUSSIAN_TARGETS[sigma]
    elif sigma in PILLOW_TARGETS:
        whom, (must, goal) = PILLOW, PILLOW_TARGETS[sigma]
    if size == "1080x1920" and whom:
        return whom, must, goal
    if size == "4000x3000" and whom:
        return whom, must * LARGE_SHARE, goal * LARGE_SHARE
    if size == "256x256" and sigma >= 5:
        return "Gaussian", SMALL_TARGET, None
    return None


def blur_row(times, size, sigma, peers):
    ours = times.blur(OURS, size, sigma)
    row = [f"{sigma:g}",
           f"{milliseconds(ours)} {spread(times, 'blur', OURS, size, f'{sigma:g}')}",
           milliseconds(floor(times, size, sigma))]
    if not peers:
        return row
    found = {whose: times.blur(whose, size, sigma) for whose in [*GAUSSIANS, PILLOW]}
    exact = [found[g] for g in GAUSSIANS if found[g] and g != THREE]
    best = {"Gaussian": min(exact) if exact else None, PILLOW: found[PILLOW]}
    row += [milliseconds(t) for t in found.values()]
    row += [ratio(best["Gaussian"], ours), ratio(found[THREE], ours), ratio(best[PILLOW], ours)]
    wanted = targets(size, sigma)
    if not wanted or best[wanted[0]] is None:
        return row + ["", "", ""]
    whom, must, goal = wanted
    times_as_fast = best[whom] / ours
    reached = "goal" if goal and times_as_fast >= goal else \
        "must" if times_as_fast >= must else "missed"
    return row + [f"{must:.2f} × {whom}", f"{goal:.2f} × {whom}" if goal else "", reached]


def blur_part(times, peers):
    heads = ["σ", "zoren", "taps at peak"]
    text = "## The blur\n\nMilliseconds of a call; the sign ± gives half the distance of the " \
           "quartiles. "
    text += "*Taps at peak* is what two passes of three channels cost when every tap is one " \
            "multiply-add at the peak rate above; wide kernels take fewer operations than taps.\n\n"
    if peers:
        heads += [*GAUSSIANS, PILLOW, "best Gaussian / zoren", "3 channels / zoren",
                  "Pillow / zoren", "must", "goal", "reached"]
        text += "The Gaussian peers have the same kernel size, replicate the border and write " \
                "another picture. *Best Gaussian* is the best of those that take the same RGBA " \
                "pixels; on 3 packed channels OpenCV moves a quarter less, and stands beside. " \
                "Pillow approximates with three box blurs. A dash: a call that was " \
                "estimated at more than 3 s was not made, or that σ was not measured beside " \
                "ours. At 4000x3000 *must* and *goal* are three quarters of those at 1080x1920; " \
                "at 256x256 *must* is three times the best Gaussian peer from σ 5 on.\n\n"
        text += "![Cost of the blur against σ, with the peers](images/blur-cost.png)\n\n"
    for size in (s for s in SIZES if times.sigmas(s)):
        rows = [blur_row(times, size, sigma, peers) for sigma in times.sigmas(size)]
        text += f"### {size}\n\n" + table(heads, rows)
    wide = {s: times.blur(OURS, "1080x1920", s) for s in times.sigmas("1080x1920") if s >= 25}
    if 100 in wide:
        slowest = max(wide, key=wide.get)
        text += f"Over σ 25 to {max(wide):g} at 1080x1920 the slowest point, σ {slowest:g}, " \
                f"costs {wide[slowest] / wide[100]:.2f} times σ 100; σ 1000 costs " \
                f"{wide[1000] / wide[25]:.2f} times σ 25.\n\n"
    return text


def limit_share(times, routine, size):
    """By bytes a second: a limit may move more of them in a call than the routine needs to."""
    return times.rate(routine, OURS, size) / times.rate("limit", OTHER[routine][0], size)


def other_part(times):
    peers = {n[0]: n[1] for n in times.all if n[0] in OTHER and n[1] != OURS}
    rows = []
    for routine, (limit, goal, met) in OTHER.items():
        for size in (s for s in SIZES if (routine, OURS, s) in times.all):
            ours = times.median(routine, OURS, size)
            peer = times.median(routine, peers.get(routine), size)
            share = limit_share(times, routine, size)
            known = met and ("peer" not in goal or peer)
            rows.append([routine, size, f"{ours / 1e3:.4g} {spread(times, routine, OURS, size)}",
                         f"{peers[routine]}: {peer / 1e3:.4g}" if peer else "-", ratio(peer, ours),
                         f"{limit}: {ours * share / 1e3:.4g}", percent(share), goal,
                         ("yes" if met(share, peer and peer / ours) else "no") if known else ""])
    text = "## Other image routines\n\nMicroseconds of a call. A limit is a loop that moves the " \
           "same bytes and does nothing else, in the same run.\n\n"
    text += table(["routine", "size", "zoren", "peer", "peer / zoren", "limit",
                   "share of the limit", "goal", "reached"], rows)
    text += "![Share of the limit, by routine](images/limit-share.png)\n\n"
    ours = times.median("statistics", OURS, "10000x1")
    if ours:
        scan = times.median("statistics", "fgets and sscanf", "10000x1")
        read = times.median("statistics", "limit", "10000x1")
        text += "## The statistics file\n\n10,000 lines, milliseconds. The limit only reads.\n\n"
        text += table(["zoren", "fgets and sscanf", "ratio", "goal", "reached", "limit"],
                      [[f"{ours / 1e6:.3g} {spread(times, 'statistics', OURS, '10000x1')}",
                        f"{scan / 1e6:.3g}", ratio(scan, ours), "6",
                        "yes" if scan / ours >= 6 else "no", f"{read / 1e6:.3g}"]])
    text += "## The kernel\n\n`calcuGaussianTemplate`, microseconds.\n\n"
    kernels = sorted((n for n in times.all if n[0] == "kernel"), key=lambda n: float(n[3]))
    return text + table(["σ", "taps", "time"], [
        [n[3], n[2].split("x")[0], f"{times.median(*n) / 1e3:.3g}"] for n in kernels])


def memory_part(times):
    size = next(iter(times.memory))[1]
    width, height = map(int, size.split("x"))
    sigmas = sorted({key[2] for key in times.memory})
    whose = sorted({key[0] for key in times.memory}, key=lambda name: (name != OURS, name))
    rows = []
    for sigma in sigmas:
        taps = int(4 * sigma) - (int(4 * sigma) % 2 == 0)
        most = 64 * (width + height + taps) * 4
        if sigma <= 25:
            most = min(most, 2 << 20)
        held = [times.memory.get((name, size, sigma)) for name in whose]
        rows.append([f"{sigma:g}", *("-" if h is None else f"{h / 2**20:.2f}" for h in held),
                     f"{most / 2**20:.2f}", "yes" if held[0] <= most else "no"])
    return f"## Memory\n\nThe most that a blur at {size} holds at a time beyond the picture, in " \
           "MiB, counted at every allocation. Ours with the kernel and all; the peers' with the " \
           "picture they write. A dash: not measured.\n\n" + \
           table(["σ", *whose, "goal", "reached"], rows)


def java_part(rows):
    return "## From Java\n\nNanoseconds of a call on a bitmap of 2 x 2 pixels, median and " \
           "quartiles over rounds.\n\n" + table(["call", "median", "quartiles"], [
               [r["name"], f"{r['median']:.0f}", f"{r['lower']:.0f} to {r['upper']:.0f}"]
               for r in rows])


def arm_part(rows):
    return "## 64-bit ARM: a model, not a measurement\n\nllvm-mca 19 with its model of a " \
           "Neoverse N1 runs the innermost loops of the arm64 build, every load a hit. The peak " \
           "is the model's for independent multiply-adds of the loop's kind. Not known from " \
           "this: misses, and what lies between the loops.\n\n" + table(
               ["function", "instructions", "multiply-adds", "a cycle", "peak", "share"],
               [[f"`{r['function']}`", r["instructions"], r["multiply_adds"],
                 f"{r['per_cycle']:.2f}", f"{r['peak']:.2f}", percent(r["per_cycle"] / r["peak"])]
                for r in rows])


def machine_part(times):
    c = times.context
    caches = ", ".join(f"{k['size'] >> 10} KiB L{k['level']}" for k in c["caches"]
                       if k["type"] != "Instruction")
    rate = {limit: {s: times.rate("limit", limit, s) / 1e9 for s in SIZES
                    if ("limit", limit, s) in times.all} for limit in ("read", "copy", "change")}
    text = f"Processor: {c['processor']}, {c['num_cpus']} at {c['mhz_per_cpu']} MHz as the " \
           f"system tells it; caches {caches}. Compiler: {c['compiler']}. One thread, times " \
           f"are the processor's; medians of {c['repetitions']} repetitions, all benchmarks of " \
           f"the run shuffled. Load of the machine at the start: {c['load_avg'][0]:.1f}.\n\n"
    peak = times.rate("limit", "multiply-add", "12288x64") / 1e9
    text += f"Measured limits: {peak:.1f} G 16-bit multiply-adds a second, and bytes moved, GB a " \
            "second (what is written counts again):\n\n"
    sizes = list(rate["read"])
    return text + table(["", *sizes],
                        [[k, *(f"{v[s]:.1f}" for s in sizes)] for k, v in rate.items()])


def plot_blur(times, path):
    size = "1080x1920" if times.sigmas("1080x1920") else "256x256"
    plt.figure(figsize=(8, 5))
    for whose in [OURS, *GAUSSIANS, PILLOW]:
        sigmas = times.sigmas(size, whose)
        if sigmas:
            plt.loglog(sigmas, [times.blur(whose, size, s) / 1e6 for s in sigmas], marker="o",
                       label=whose, linewidth=2.5 if whose == OURS else 1.2)
    sigmas = [s for s in times.sigmas(size) if s <= 100]
    plt.loglog(sigmas, [floor(times, size, s) / 1e6 for s in sigmas], "k:", label="taps at peak")
    plt.xlabel("σ, pixels")
    plt.ylabel("milliseconds")
    plt.title(f"Blur at {size}")
    plt.grid(True, which="both", alpha=0.3)
    plt.legend()
    plt.tight_layout()
    plt.savefig(path, dpi=100)


def plot_limits(times, path):
    sizes = [s for s in SIZES if times.sigmas(s)]
    bars = {name: [limit_share(times, name, s) for s in sizes] for name in OTHER}
    for sigma in (s for s in GAUSSIAN_TARGETS if times.blur(OURS, sizes[0], s)):
        bars[f"blur\nσ {sigma:g}"] = [floor(times, s, sigma) / times.blur(OURS, s, sigma)
                                      for s in sizes]
    plt.figure(figsize=(10, 5))
    width = 0.8 / len(sizes)
    for i, size in enumerate(sizes):
        plt.bar([x + i * width for x in range(len(bars))], [100 * b[i] for b in bars.values()],
                width, label=size)
    plt.axhline(100, color="black", linewidth=0.8)
    plt.xticks([x + 0.4 - width / 2 for x in range(len(bars))], bars)
    plt.ylabel("% of the limit")
    plt.title("Share of the limit: bytes moved, for the blur multiply-adds")
    plt.legend()
    plt.tight_layout()
    plt.savefig(path, dpi=100)


def main(results, out):
    results, out = pathlib.Path(results), pathlib.Path(out)
    times = Times(results / "bench.json")
    peers = any(n[1] == PILLOW for n in times.all)
    text = f"# Performance\n\nWritten by `scripts/bench{' --peers' if peers else ''}`, which " \
           "makes it again; nothing is entered by hand.\n\n"
    text += machine_part(times) + blur_part(times, peers) + other_part(times)
    text += memory_part(times) + java_part(json.loads((results / "java.json").read_text()))
    model = results / "arm_model.json"
    if model.exists():
        text += arm_part(json.loads(model.read_text()))
    (out.parent / "images").mkdir(parents=True, exist_ok=True)
    if peers:
        plot_blur(times, out.parent / "images/blur-cost.png")
    plot_limits(times, out.parent / "images/limit-share.png")
    out.write_text(wrapped(text.rstrip()) + "\n", encoding="utf-8")


main(*sys.argv[1:])

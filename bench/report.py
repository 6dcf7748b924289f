#!/usr/bin/python3
"""report.py RESULTS OUT.md: writes what one run of scripts/bench measured, with its plots.

RESULTS holds times.json, memory.json, avx2.json and java.json, and arm_calls.json and
arm_loops.json where the model was run. The words are those of performance.md.j2; the plots go to
the folder images beside OUT.md.
"""

import pathlib
import sys
import textwrap

import jinja2

import plots
from results import EXACT, LIMITS, OURS, PEERS, PILLOW, THREE, Times, kernel_size, load, memory_held

SCREEN = "1080x1920"
# How the columns of the counted instructions are called, by whose and processor.
ARM_COLUMNS = {(OURS, "max"): "zoren, dot products", (OURS, "cortex-a72"): "zoren, without",
               ("cv::GaussianBlur", "max"): "cv::GaussianBlur",
               ("cv::sepFilter2D", "max"): "cv::sepFilter2D",
               ("libyuv::ARGBBlur", "max"): "libyuv::ARGBBlur"}


def milliseconds(nanoseconds):
    return "-" if nanoseconds is None else f"{nanoseconds / 1e6:.3g}" \
        if nanoseconds < 1e9 else f"{nanoseconds / 1e6:.0f}"


def ratio(peer, ours):
    return "-" if peer is None else f"{peer / ours:.2f}"


def percent(share):
    return f"{100 * share:.0f} %"


def table(heads, rows):
    lines = [heads, ["---"] * len(heads), *rows]
    return "\n".join("| " + " | ".join(map(str, line)) + " |" for line in lines)


def wrapped(text):
    """Paragraphs in lines of at most 100 columns; tables, headings and pictures as they are."""
    parts = (part.strip("\n") for part in text.split("\n\n") if part.strip())
    return "\n\n".join(
        part if part.startswith(("|", "#", "!")) else
        textwrap.fill(" ".join(part.split()), 100, break_long_words=False, break_on_hyphens=False)
        for part in parts) + "\n"


def ours_at(times, scale, form, *name):
    return f"{times.median(*name) / scale:{form}} ± {percent(times.spread(*name))}"


def distance(largest, mean):
    return f"{largest:.3g}; {mean:.2f}"


def peer_at(times, whose, size, sigma):
    """A peer's time, and how far its result is from the defined one."""
    time = milliseconds(times.blur(whose, size, sigma))
    found = times.differences.get(("blur", whose, size, f"{sigma:g}"))
    return f"{time} ({distance(*found)})" if found else time


def blur_table(times, size, peers):
    """`peers` as the columns name them; those that are approximations get no column of ratios."""
    heads = ["σ", OURS, "taps at peak", *peers]
    heads += ["best Gaussian / zoren"] if peers else []
    heads += [f"{whose.split(', ')[-1]} / zoren" for whose in (THREE, PILLOW) if whose in peers]
    rows = []
    for sigma in times.sigmas(size):
        ours = times.blur(OURS, size, sigma)
        row = [f"{sigma:g}", ours_at(times, 1e6, ".3g", "blur", OURS, size, f"{sigma:g}"),
               milliseconds(times.taps_at_peak(size, sigma)),
               *(peer_at(times, whose, size, sigma) for whose in peers)]
        row += [ratio(times.best_gaussian(size, sigma), ours)] if peers else []
        rows.append(row + [ratio(times.blur(whose, size, sigma), ours)
                           for whose in (THREE, PILLOW) if whose in peers])
    return table(heads, rows)


def peak_table(times, size):
    rows = []
    for sigma in (s for s in (25, 50) if s in times.sigmas(size)):
        ours, taps = times.blur(OURS, size, sigma), times.taps_at_peak(size, sigma)
        rows.append([f"{sigma:g}", milliseconds(ours), milliseconds(taps), ratio(ours, taps)])
    return table(["σ", OURS, "all taps at the measured peak", "share"], rows)


def slowest(times, size):
    """The slowest sigma from 25 on, and what Pillow takes there."""
    sigma = max((s for s in times.sigmas(size) if s >= 25),
                key=lambda s: times.blur(OURS, size, s))
    return {"sigma": f"{sigma:g}", "widest": f"{max(times.sigmas(size)):g}",
            "ours": milliseconds(times.blur(OURS, size, sigma)),
            "pillow": milliseconds(times.blur(PILLOW, size, sigma)),
            "ratio": ratio(times.blur(PILLOW, size, sigma), times.blur(OURS, size, sigma))}


def routines_table(times):
    peers = {n[0]: n[1] for n in times.all if n[0] in LIMITS and n[1] != OURS}
    rows = []
    for routine, limit in LIMITS.items():
        for size in times.sizes():
            ours, peer = times.median(routine, OURS, size), None
            share, told, far = times.limit_share(routine, size), "-", "-"
            if routine in peers:
                peer = times.median(routine, peers[routine], size)
                told = f"{peers[routine]}: {peer / 1e3:.4g}"
                found = times.differences.get((routine, peers[routine], size))
                far = distance(*found) if found else "-"
            rows.append([routine, size, ours_at(times, 1e3, ".4g", routine, OURS, size), told, far,
                         ratio(peer, ours), f"{limit}: {ours * share / 1e3:.4g}", percent(share)])
    return table(["routine", "size", OURS, "peer", "its difference", "peer / zoren", "limit",
                  "share of the limit"], rows)


def statistics_table(times):
    name = "statistics", OURS, "10000x1"
    ours = times.median(*name)
    scan, read = (times.median("statistics", whose, "10000x1")
                  for whose in ("fgets and sscanf", "limit"))
    return table([OURS, "fgets and sscanf", "ratio", "limit"],
                 [[ours_at(times, 1e6, ".3g", *name), f"{scan / 1e6:.3g}", ratio(scan, ours),
                   f"{read / 1e6:.3g}"]])


def kernels_table(times):
    names = sorted((n for n in times.all if n[0] == "kernel"), key=lambda n: float(n[3]))
    return table(["σ", "taps", "time"], [
        [n[3], n[2].split("x")[0], f"{times.median(*n) / 1e3:.3g}"] for n in names])


def memory_table(held, size):
    width, height = map(int, size.split("x"))
    whose = sorted({key[0] for key in held}, key=lambda name: (name != OURS, name))
    rows = []
    for sigma in sorted({key[2] for key in held}):
        bound = 64 * 4 * (width + height + kernel_size(sigma))
        found = [held.get((name, size, sigma)) for name in whose]
        rows.append([f"{sigma:g}", *("-" if h is None else f"{h / 2**20:.2f}" for h in found),
                     f"{bound / 2**20:.2f}"])
    return table(["σ", *whose, "bound"], rows)


def java_table(rows):
    return table(["call", "median", "quartiles"], [
        [r["name"], f"{r['median']:.0f}", f"{r['lower']:.0f} to {r['upper']:.0f}"] for r in rows])


def rates_table(times):
    sizes = times.sizes()
    return table(["", *sizes], [
        [limit, *(f"{times.rate('limit', limit, size) / 1e9:.1f}" for size in sizes)]
        for limit in ("read", "copy", "change")])


def calls_table(calls):
    found = {(p["whose"], p["core"], p["sigma"]): p for p in calls["points"]}
    rows = []
    for sigma in sorted({p["sigma"] for p in calls["points"]}):
        row = [f"{sigma:g}"]
        for whose, core in ARM_COLUMNS:
            p = found[whose, core, sigma]
            far = "" if whose == OURS else f" ({distance(p['largest'], p['mean'])})"
            row.append(f"{p['instructions']:.{0 if p['instructions'] >= 1000 else 1}f}{far}")
        exact = min(found[whose, "max", sigma]["instructions"] for whose in EXACT)
        ours = [found[OURS, core, sigma]["instructions"] for core in ("max", "cortex-a72")]
        rows.append(row + [ratio(exact, o) for o in ours])
    return table(["σ", *ARM_COLUMNS.values(), "best of OpenCV / dot products",
                  "best of OpenCV / without"], rows)


def loops_table(loops):
    """One row for the loops of a file that store, and one for those that do not."""
    def span(values, form):
        low, high = (f"{f(values):{form}}" for f in (min, max))
        return low if low == high else f"{low} to {high}"

    cores, rows = list(loops[0]["per_cycle"]), []
    for file, stores in sorted({(r["file"], r["stores"]) for r in loops}):
        group = [r for r in loops if (r["file"], r["stores"]) == (file, stores)]
        rows.append([f"`{file}`", "whole outputs" if stores else "taps alone", len(group),
                     span([r["taps"] / r["instructions"] for r in group], ".1f"),
                     *(span([r["per_cycle"][core] for r in group], ".1f") for core in cores)])
    return table(["file", "what a pass holds", "loops", "taps an instruction",
                  *(f"taps a cycle, {core}" for core in cores)], rows)


def main(results, out):
    results, out = pathlib.Path(results), pathlib.Path(out)
    times, avx2 = (Times(load(results / name)) for name in ("times.json", "avx2.json"))
    held = memory_held(load(results / "memory.json"))
    calls, loops = load(results / "arm_calls.json"), load(results / "arm_loops.json")
    peers = PEERS if any(n[1] == PILLOW for n in times.all) else []
    screen = SCREEN if SCREEN in times.sizes() else times.sizes()[-1]
    images = out.parent / "images"
    images.mkdir(parents=True, exist_ok=True)
    if peers:
        plots.blur_cost(times, images / "blur-cost.png")
    plots.limit_share(times, images / "limit-share.png")
    if calls:
        plots.arm_instructions(calls, ARM_COLUMNS, images / "arm-instructions.png")
    context = times.context
    values = {
        "peers": peers, "times": times, "context": context, "screen": screen,
        "caches": ", ".join(f"{c['size'] >> 10} KiB L{c['level']}" for c in context["caches"]
                            if c["type"] != "Instruction"),
        "wide": context["target"].startswith("AVX3"),
        "peak": f"{times.peak() / 1e9:.0f}", "avx2_peak": f"{avx2.peak() / 1e9:.0f}",
        "rates": rates_table(times),
        "blurs": {size: blur_table(times, size, peers) for size in times.sizes()},
        "avx2": blur_table(avx2, screen, [p for p in peers if p != PILLOW]),
        "at_peak": peak_table(times, screen), "slowest": slowest(times, screen),
        "routines": routines_table(times),
        "statistics": statistics_table(times), "kernels": kernels_table(times),
        "memory": memory_table(held, times.sizes()[-1]), "memory_size": times.sizes()[-1],
        "java": java_table(load(results / "java.json")),
        "calls": calls and calls_table(calls), "calls_size": calls and calls["size"],
        "loops": loops and loops_table(loops),
    }
    templates = jinja2.Environment(loader=jinja2.FileSystemLoader(pathlib.Path(__file__).parent),
                                   undefined=jinja2.StrictUndefined, trim_blocks=True)
    text = templates.get_template("performance.md.j2").render(values)
    out.write_text(wrapped(text), encoding="utf-8")


main(*sys.argv[1:])

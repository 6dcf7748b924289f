#!/usr/bin/python3
"""calls.py [--quick] BUILD PLUGIN OUT.json: executed instructions a pixel of whole blurs.

Runs BUILD's zoren_arm_calls in qemu-aarch64 with the plugin that counts, twice for each point: what
a run with two calls executes more than one with a single call is a call's, without the start of the
program. The library runs on a processor with dot products and on one without.
"""

import json
import pathlib
import subprocess
import sys
import tempfile

SIGMAS = [2.6, 4.6, 10.6, 25, 50, 100]
WITH_DOTS, WITHOUT = "max", "cortex-a72"  # qemu's processors
POINTS = [("zoren", WITH_DOTS), ("zoren", WITHOUT), ("cv::GaussianBlur", WITH_DOTS),
          ("cv::sepFilter2D", WITH_DOTS), ("libyuv::ARGBBlur", WITH_DOTS)]


def run(build, plugin, core, *arguments):
    """The instructions of a run, and what it printed."""
    with tempfile.NamedTemporaryFile("r") as count:
        command = ["qemu-aarch64", "-cpu", core, "-plugin", f"{plugin},out={count.name}",
                   f"{build}/bin/zoren_arm_calls", *map(str, arguments)]
        printed = subprocess.run(command, check=True, capture_output=True, text=True).stdout
        return int(count.read()), printed


def point(build, plugin, whose, core, sigma, width, height):
    once, printed = run(build, plugin, core, whose, f"{sigma:g}", width, height, 1)
    twice, _ = run(build, plugin, core, whose, f"{sigma:g}", width, height, 2)
    largest, mean = map(float, printed.split())
    return {"whose": whose, "core": core, "sigma": sigma, "largest": largest, "mean": mean,
            "instructions": (twice - once) / (width * height)}


def main(build, plugin, out, quick=False):
    width, height = (160, 120) if quick else (640, 480)
    points = []
    for sigma in SIGMAS:
        points += [point(build, plugin, *who, sigma, width, height) for who in POINTS]
        print(f"  σ {sigma:g}:", ", ".join("{whose} on {core} {instructions:.1f}".format(**p)
                                          for p in points[-len(POINTS):]), flush=True)
    pathlib.Path(out).write_text(json.dumps(
        {"size": f"{width}x{height}", "points": points}, indent=2), encoding="utf-8")


arguments = [a for a in sys.argv[1:] if a != "--quick"]
main(*arguments, quick=len(arguments) < len(sys.argv) - 1)

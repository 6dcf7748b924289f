"""What the programs of scripts/bench wrote, for the report and its plots."""

import json
import statistics

OURS, PILLOW, THREE = "zoren", "Pillow", "cv::GaussianBlur, 3 channels"
EXACT = ["cv::GaussianBlur", "cv::sepFilter2D"]  # Gaussians of the same RGBA pixels
PEERS = [EXACT[0], THREE, EXACT[1], PILLOW]
SIZES = ["64x64", "256x256", "1080x1920", "4000x3000"]
LIMITS = {"mask": "change", "gray": "read", "cast": "read", "widen": "copy", "heighten": "copy"}


def load(path):
    return json.loads(path.read_text()) if path.exists() else None


def kernel_size(sigma):
    return int(4 * sigma) - (int(4 * sigma) % 2 == 0)


def memory_held(report):
    """Bytes, by whose, size and sigma."""
    names = (run["run_name"].split("/")[1:4] + [run] for run in report["benchmarks"])
    return {(whose, size, float(sigma)): run["max_bytes_used"]
            for whose, size, sigma, run in names}


class Times:
    """Processor nanoseconds of every benchmark: median, and quartile spread as a share of it."""

    def __init__(self, report):
        self.context = report["context"]
        self.all, self.rates, self.differences = {}, {}, {}
        for run in report["benchmarks"]:
            if run["run_type"] != "iteration":
                continue
            name = run["run_name"].split("/")
            name = tuple(part for part in name if ":" not in part or "::" in part)
            self.all.setdefault(name, []).append(run["cpu_time"])
            self.rates.setdefault(name, []).append(run.get("bytes_per_second", 0))
            if "largest_difference" in run:
                self.differences[name] = run["largest_difference"], run["mean_difference"]

    def median(self, *name):
        return statistics.median(self.all[name]) if name in self.all else None

    def rate(self, *name):
        return statistics.median(self.rates[name])

    def spread(self, *name):
        lower, _, upper = statistics.quantiles(self.all[name], n=4, method="inclusive")
        return (upper - lower) / 2 / self.median(*name)

    def sizes(self):
        return [s for s in SIZES if self.sigmas(s)]

    def sigmas(self, size, whose=OURS):
        return sorted(float(n[3]) for n in self.all if n[:3] == ("blur", whose, size))

    def blur(self, whose, size, sigma):
        return self.median("blur", whose, size, f"{sigma:g}")

    def best_gaussian(self, size, sigma):
        """Of those that take the same RGBA pixels."""
        found = [self.blur(whose, size, sigma) for whose in EXACT]
        return min((t for t in found if t), default=None)

    def peak(self):
        """16-bit multiply-adds a second."""
        return self.rate("limit", "multiply-add", "12288x64")

    def taps_at_peak(self, size, sigma):
        """Nanoseconds of two passes of three channels, a multiply-add a tap."""
        width, height = map(int, size.split("x"))
        return 6 * width * height * kernel_size(sigma) / self.peak() * 1e9

    def limit_share(self, routine, size):
        """By bytes a second: a limit may move more of them in a call than the routine needs to."""
        return self.rate(routine, OURS, size) / self.rate("limit", LIMITS[routine], size)

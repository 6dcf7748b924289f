#!/usr/bin/python3
"""loops.py OBJECTS OUT.json: what llvm-mca makes of the inner loops of an arm64 build.

Finds, in every blur object of the folder OBJECTS, the innermost loops that take taps, and lets the
models of a small in-order and a big out-of-order core run them, every load a hit. Loops that
store are told apart: they hold whole outputs, with the division and all.
"""

import json
import pathlib
import re
import subprocess
import sys

LLVM = "/usr/lib/llvm-19/bin/"
CORES = ["cortex-a55", "neoverse-n1"]
PASSES = 500  # of a loop
FEWEST = 24  # taps of a loop; with less it is the rest of another one
LINE = re.compile(r"\s*([0-9a-f]+):\s+(\S+)\s*(.*)")
# smlal v0.4s, v1.4h, ...: as many products as the first operand has lanes.
STORE = re.compile(r"st[1-4]?[pr]?$")
MULTIPLY_ADD = re.compile(r"[su]mlal2?$")
LANES = re.compile(r"v\d+\.(\d)[sh]\b")
BRANCH = re.compile(r"b(\.\w+)?$|cbn?z$|tbn?z$")


def functions(file):
    """Yields (name, [(address, mnemonic, operands)])."""
    command = [LLVM + "llvm-objdump", "-d", "-C", "--no-show-raw-insn", file]
    listing = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    for part in re.split(r"\n(?=[0-9a-f]{16} <)", listing):
        header = re.match(r"[0-9a-f]{16} <(.*)>:", part)
        if header:
            lines = (LINE.match(line) for line in part.splitlines()[1:])
            code = [(int(m[1], 16), m[2], m[3].split("//")[0]) for m in lines if m]
            yield header[1], code


def loops(code):
    """Yields the innermost loops: runs of instructions up to a branch back to the first one."""
    found = []
    for end, (address, mnemonic, operands) in enumerate(code):
        target = re.search(r"0x([0-9a-f]+) <", operands)
        if BRANCH.match(mnemonic) and target and code[0][0] <= int(target[1], 16) <= address:
            start = end - (address - int(target[1], 16)) // 4
            found.append((start, end))
    for start, end in found:
        if not any(start <= a and b <= end and (a, b) != (start, end) for a, b in found):
            yield code[start : end + 1]


def taps(loop):
    """The taps of a pass. A dot product of bytes multiplies 16 pixels by a half of their weights;
    otherwise a product is a tap, and two where 16-bit lanes were added before, eight at a time."""
    dots = sum(m == "udot" for _, m, _ in loop)
    if dots:
        return 8 * dots
    products = sum(int(LANES.match(o)[1]) for _, m, o in loop if MULTIPLY_ADD.match(m))
    return products and products + 8 * sum(m == "add" and ".8h" in o for _, m, o in loop)


def cycles(lines, core):
    """The cycles of one pass."""
    command = [LLVM + "llvm-mca", "-mtriple=aarch64-linux-gnu", f"-mcpu={core}", "-mattr=+dotprod",
               f"-iterations={PASSES}"]
    text = "\n".join(["top:"] + lines) + "\n"
    report = subprocess.run(command, input=text, check=True, capture_output=True, text=True).stdout
    return int(re.search(r"Total Cycles:\s+(\d+)", report)[1]) / PASSES


def assembly(loop):
    """Instructions as the assembler takes them; a branch goes to the top or past the end, which is
    all the same to the model."""
    return [f"{m} " + re.sub(r"0x[0-9a-f]+ <.*>", "top", o) for _, m, o in loop]


def main(folder, out):
    rows = {}
    for file in sorted(pathlib.Path(folder).glob("*_blur.cpp.o")):
        for _, code in functions(file):
            for loop in loops(code) if code else []:
                lines = assembly(loop)
                # A function inlines a kernel in several shapes: equal loops are told once.
                shape = file.name, *(line.split()[0] for line in lines)
                if shape not in rows and taps(loop) >= FEWEST:
                    rows[shape] = {
                        "file": "blur/" + file.name.removesuffix(".o"), "instructions": len(loop),
                        "taps": taps(loop), "stores": any(map(STORE.match, shape[1:])),
                        "per_cycle": {core: taps(loop) / cycles(lines, core) for core in CORES}}
    rows = sorted(rows.values(), key=lambda r: (r["file"], r["stores"], -r["taps"]))
    if not rows:
        sys.exit(f"loops.py: no loop with taps in {folder}")
    for row in rows:
        print("  {file}: {taps} taps in {instructions} instructions, a cycle".format(**row),
              ", ".join(f"{rate:.2f} on {core}" for core, rate in row["per_cycle"].items()),
              "with stores" if row["stores"] else "")
    with open(out, "w", encoding="utf-8") as file:
        json.dump(rows, file, indent=2)


main(*sys.argv[1:])

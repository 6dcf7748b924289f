#!/usr/bin/python3
"""arm_model.py LIBRARY OUT.json: what llvm-mca makes of the innermost loops of an arm64 build.

Finds, in every function of the library, the innermost loops that hold 16-bit vector multiply-adds,
and lets the model of a Neoverse N1 run them. The core's peak comes from the same model: independent
multiply-adds of the same kind and nothing else.
"""

import json
import re
import subprocess
import sys

LLVM = "/usr/lib/llvm-19/bin/"
PASSES = 1000  # of a loop
LINE = re.compile(r"\s*([0-9a-f]+):\s+(\S+)\s*(.*)")
# smlal v0.4s, v1.4h, ...: as many products as the first operand has lanes.
MULTIPLY_ADD = re.compile(r"[su]mlal2?$|mla$")
PRODUCTS = re.compile(r"v\d+\.(\d)[sh]\b")
BRANCH = re.compile(r"b(\.\w+)?$|cbn?z$|tbn?z$")


def functions(library):
    """Yields (name, [(address, mnemonic, operands)])."""
    command = [LLVM + "llvm-objdump", "-d", "-C", "--no-show-raw-insn", library]
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


def products(mnemonic, operands):
    lanes = PRODUCTS.match(operands) if MULTIPLY_ADD.match(mnemonic) else None
    return int(lanes[1]) if lanes else 0


def cycles(lines):
    """The cycles of one pass."""
    command = [LLVM + "llvm-mca", "-mtriple=aarch64-linux-gnu", "-mcpu=neoverse-n1",
               f"-iterations={PASSES}"]
    text = "\n".join(["top:"] + lines) + "\n"
    report = subprocess.run(command, input=text, check=True, capture_output=True, text=True).stdout
    return int(re.search(r"Total Cycles:\s+(\d+)", report)[1]) / PASSES


def assembly(loop):
    """Instructions as the assembler takes them; a branch goes to the top or past the end, which is
    all the same to the model."""
    for _, mnemonic, operands in loop:
        yield f"{mnemonic} " + re.sub(r"0x[0-9a-f]+ <.*>", "top", operands)


def peak(loop):
    """Multiply-adds a cycle of the commonest kind in the loop, with nothing in their way."""
    kinds = [(m, PRODUCTS.match(o)[0].split(".")[1]) for _, m, o in loop if products(m, o)]
    mnemonic, shape = max(set(kinds), key=kinds.count)
    narrow = {"4s": "8h" if mnemonic.endswith("2") else "4h"}.get(shape, shape)
    if mnemonic == "mla":
        narrow = shape
    lines = [f"{mnemonic} v{i}.{shape}, v30.{narrow}, v31.{narrow}" for i in range(24)]
    return int(shape[0]) * len(lines) / cycles(lines)


def main(library, out):
    rows = []
    for name, code in functions(library):
        for loop in loops(code) if code else []:
            adds = sum(products(m, o) for _, m, o in loop)
            if adds < 16:  # the rest of another loop, or none of the kernels
                continue
            rate, most = adds / cycles(list(assembly(loop))), peak(loop)
            rows.append({"function": re.sub(r"\(.*", "", name).split("::")[-1],
                         "address": hex(loop[0][0]), "instructions": len(loop),
                         "multiply_adds": adds, "per_cycle": rate, "peak": most})
    # A function inlines a kernel in several shapes: equal loops are told once.
    shapes = {}
    for row in rows:
        key = (row["function"], row["instructions"], row["multiply_adds"])
        shapes.setdefault(key, row)
    rows = list(shapes.values())
    if not rows:
        sys.exit("arm_model.py: no loop with multiply-adds in " + library)
    for row in rows:
        print("  {function} at {address}: {multiply_adds} multiply-adds in {instructions} "
              "instructions, {per_cycle:.2f} a cycle of {peak:.2f}".format(**row))
    with open(out, "w", encoding="utf-8") as file:
        json.dump(rows, file, indent=2)


main(*sys.argv[1:])

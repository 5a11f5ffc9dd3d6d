#!/usr/bin/env python3
"""Compares random kernels with their variants.

    randomKernels.py FIRST COUNT --compare build/release/tests/coarsening/compareVariants
    randomKernels.py FIRST COUNT --folder FOLDER    only writes the kernels

Kernel number i is the same in every run. Each work-item writes to memory of its
own, to local memory between barriers, or adds to counters, so the order in which
work-items run decides nothing, and a variant has to do the very same.
"""

import argparse
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile

SIZES = ["256 / 32", "256 / 16", "320 / 16 + 16", "192 / 16"]
# In turn, because the runtime compiles every variant anew.
PLANS = ["g0S2,seq:block:g0S2", "l0S2,block:g0S4", "c0S2,g0S4", "g0S2g1S2,block:c0S4",
         "l0S4,stride:g0S2", "g1S2,l0S2l1S2,g0S2"]
FLAT = ["16x16 / 4x4", "32x8 / 8x4", "16x16 / 16x1"]


class Kernel:
    """Makes up one kernel. Numbers are unsigned, so that nothing overflows."""

    def __init__(self, number):
        self.random = random.Random(number)
        self.name = f"k{number}"
        self.lines = []
        self.depth = 1
        self.scopes = [[]]
        self.count = 0
        self.loops = []
        self.flat = self.chance(0.3)
        self.has_local = self.chance(0.4)
        self.local_ids = self.has_local or self.chance(0.2)
        self.guarded = self.chance(0.4)
        self.copied = 0  # how many conditions around that may differ
        self.helper = self.chance(0.4)

    def chance(self, part):
        return self.random.random() < part

    def pick(self, *choices):
        return self.random.choice(choices)

    def put(self, line):
        self.lines.append("  " * self.depth + line)

    def fresh(self, prefix):
        self.count += 1
        return f"{prefix}{self.count}"

    def variables(self, kind):
        return [n for scope in self.scopes for n, k in scope if k == kind]

    def number(self, depth=0):
        """An expression of type uint."""
        known = self.variables("uint") + self.variables("counter")
        choice = self.random.randrange(12 if depth < 3 else 4)
        if choice == 0:
            return str(self.random.randrange(40)) + "u"
        if choice == 1:
            return self.pick("n", "(uint)get_global_size(0)", "seed", "MIX(seed)")
        if choice in (2, 3) and known:
            return self.random.choice(known)
        if choice == 4:
            return f"in[({self.number(depth + 1)}) & 255u]"
        if choice == 5:
            return f"in[{self.pick('gid', 'n')} & 255u]"
        if choice == 6 and self.variables("array"):
            array = self.random.choice(self.variables("array"))
            return f"{array}[({self.number(depth + 1)}) & 3u]"
        if choice == 7 and self.variables("vector"):
            return f"{self.random.choice(self.variables('vector'))}.{self.pick('x', 'y', 's2', 'w')}"
        if choice == 8:
            return f"({self.condition(depth + 1)} ? {self.number(depth + 1)} : {self.number(depth + 1)})"
        if choice == 9 and self.helper:
            return f"help_{self.name}({self.number(depth + 1)}, in)"
        if choice == 10 and self.local_ids:
            return self.pick("(uint)get_local_id(0)", "(uint)get_group_id(0)",
                             "(uint)get_local_size(0)", "(uint)get_num_groups(0)")
        operator = self.pick("+", "-", "*", "^", "&", "|", "+", "*")
        if choice == 11:
            return f"({self.number(depth + 1)} {self.pick('% 7u', '/ 3u', '>> 2', '<< 1')})"
        return f"({self.number(depth + 1)} {operator} {self.number(depth + 1)})"

    def condition(self, depth=0):
        left, right = self.number(depth + 1), self.number(depth + 1)
        text = f"({left} & 15u) {self.pick('<', '>', '==', '!=', '>=')} ({right} & 15u)"
        if depth < 2 and self.chance(0.2):
            return f"({text}) {self.pick('&&', '||')} ({self.condition(depth + 1)})"
        return f"({text})"

    def uniform(self):
        """A condition that no id goes into."""
        return self.pick("(n & 1u)", "(seed % 3u == 1u)", "(n > 5u)", "(n < 3u)")

    def block(self, differs, count=None):
        self.depth += 1
        self.scopes.append([])
        self.copied += differs
        for _ in range(count or self.random.randrange(1, 4)):
            self.statement()
        self.copied -= differs
        self.scopes.pop()
        self.depth -= 1

    def statement(self):
        choices = [self.declare, self.declare, self.assign, self.assign, self.store]
        if self.depth < 4:
            choices += [self.branch, self.loop, self.choice]
        if self.loops:
            choices.append(self.leave)
        choices.append(self.vector)
        choices.append(self.count_up)
        self.random.choice(choices)()

    def declare(self):
        kind = self.random.randrange(5)
        if kind == 0:
            name = self.fresh("a")
            self.put(f"uint {name}[4] = {{{self.number()}, 1u, {self.number()}, 7u}};")
            self.scopes[-1].append((name, "array"))
        elif kind == 1:
            name = self.fresh("v")
            self.put(f"uint4 {name} = (uint4)({self.number()}, {self.number()}, 3u, {self.number()});")
            self.scopes[-1].append((name, "vector"))
        elif kind == 2:
            first, second = self.fresh("u"), self.fresh("u")
            self.put(f"uint {first} = {self.number()}, {second} = {self.number()};")
            self.scopes[-1] += [(first, "uint"), (second, "uint")]
        elif kind == 3 and self.variables("uint"):
            # Shadows a name of an outer scope.
            name = self.random.choice(self.variables("uint"))
            if any(name == n for n, _ in self.scopes[-1]):
                return
            self.put(f"uint {name} = {self.random.randrange(9)}u;")
            self.scopes[-1].append((name, "uint"))
        else:
            name = self.fresh("u")
            self.put(f"uint {name} = {self.number()};")
            self.scopes[-1].append((name, "uint"))
            if self.chance(0.15):
                pointer = self.fresh("p")
                self.put(f"uint *{pointer} = &{name};")
                self.put(f"*{pointer} += {self.number()};")

    def assign(self):
        known = self.variables("uint")
        arrays = self.variables("array")
        if arrays and self.chance(0.3):
            self.put(f"{self.random.choice(arrays)}[({self.number()}) & 3u] {self.pick('=', '+=', '^=')} {self.number()};")
        elif known:
            name = self.random.choice(known)
            self.put(self.pick(f"{name} = {self.number()};", f"{name} += {self.number()};",
                               f"{name} ^= {self.number()};", f"{name}++;", f"--{name};"))

    def vector(self):
        known = self.variables("vector")
        if known:
            name = self.random.choice(known)
            self.put(self.pick(f"{name}.xy = {name}.zw + {self.number()};", f"{name} += (uint4)({self.number()});",
                               f"{name}.s3 ^= {self.number()};", f"{name} = {name}.wzyx;"))

    def store(self):
        self.put(f"out[at * 4u + (({self.number()}) & 3u)] {self.pick('=', '+=', '^=')} {self.number()};")

    def count_up(self):
        if self.chance(0.3):
            self.put(f"atomic_add(&counters[({self.number()}) & 7u], {self.number()});")

    def branch(self):
        differs = self.chance(0.6)
        self.put(f"if ({self.condition() if differs else self.uniform()}) {{")
        self.block(differs)
        if self.chance(0.4):
            self.put("} else {")
            self.block(differs)
        self.put("}")

    def loop(self):
        name = self.fresh("c")
        differs = self.chance(0.3)
        bound = f"(({self.number()}) & 7u)" if differs else self.pick("5u", "(n & 7u)", "3u")
        self.loops.append("loop")
        if self.chance(0.75):
            if self.chance(0.2):
                self.put("#pragma unroll 2")
            step = self.pick(f"++{name}", f"{name} += 1u", f"{name} += 2u")
            self.put(f"for (uint {name} = 0; {name} < {bound}; {step}) {{")
            self.scopes.append([(name, "counter")])
            self.block(differs)
            self.scopes.pop()
            self.put("}")
        else:
            self.put(f"uint {name} = {bound};")
            self.scopes[-1].append((name, "counter"))
            self.put(f"while ({name} > 0) {{")
            self.put(f"  {name}--;")
            self.block(differs)
            self.put("}")
        self.loops.pop()

    def choice(self):
        differs = self.chance(0.5)
        self.put(f"switch (({self.number() if differs else 'n'}) & 3u) {{")
        self.loops.append("switch")
        for value in range(3):
            self.put(f"case {value}: {{")
            self.block(True)
            self.put("}" + self.pick("", " break;"))
        self.put("default: break; }")
        self.loops.pop()

    def leave(self):
        word = self.pick("break", "continue") if "loop" in self.loops and self.loops[-1] == "loop" else "break"
        self.put(f"if ({self.condition() if self.chance(0.7) else self.uniform()}) {word};")

    def exchange(self):
        """Gives something to a neighbour through local memory."""
        tile = self.pick("tile", "tile2")
        self.put(f"{tile}[lid] = {self.number()};")
        self.put("barrier(CLK_LOCAL_MEM_FENCE);")
        name = self.fresh("u")
        size = "(uint)(get_local_size(0) * get_local_size(1))"
        self.put(f"uint {name} = {tile}[(lid + {self.random.randrange(9)}u) % {size}];")
        self.scopes[-1].append((name, "uint"))
        if self.chance(0.4):
            total = self.fresh("u")
            self.put(f"uint {total} = 0;")
            self.put(f"for (uint k = 0; k < {size}; ++k) {total} += {tile}[k] * {self.pick('k', '3u', name)};")
            self.scopes[-1].append((total, "uint"))
        self.put("barrier(CLK_LOCAL_MEM_FENCE);")

    def text(self):
        if self.flat:
            self.put("const uint gid = (uint)(get_global_id(0) - get_global_offset(0));")
            self.put("const uint row = (uint)(get_global_id(1) - get_global_offset(1));")
            self.put("const uint at = row * (uint)get_global_size(0) + gid;")
        else:
            self.put(self.pick(
                "const uint gid = (uint)(get_global_id(0) - get_global_offset(0));",
                "const uint gid = (uint)(get_global_id(0)) - (uint)get_global_offset(0);"))
            self.put("const uint at = gid;")
        self.scopes[-1] += [("gid", "uint_"), ("at", "uint_")]
        if self.has_local:
            self.put("__local uint tile[64], tile2[64];")
            self.put("const uint lid = (uint)(get_local_id(1) * get_local_size(0) + get_local_id(0));")
        elif self.guarded:
            self.put(self.pick("if (gid >= n * 3u + 200u) return;", "if (at % 37u == 5u && n > 2u) { return; }"))
        self.put("uint u0 = gid * 3u + 1u, w0 = n;")
        self.scopes[-1] += [("u0", "uint"), ("w0", "uint")]
        for _ in range(self.random.randrange(3, 8)):
            if self.has_local and self.chance(0.35):
                self.exchange()
            else:
                self.statement()
        if not self.has_local and self.chance(0.2):
            self.put(f"if ({self.condition()}) {{ out[at * 4u] += 9u; return; }}")
            self.statement()
        self.put("out[at * 4u + 1u] += u0 + w0;")
        known = self.variables("uint")
        for name in known[:6]:
            self.put(f"out[at * 4u + 2u] = out[at * 4u + 2u] * 31u + {name};")
        launches = FLAT if self.flat else SIZES
        chosen = self.random.choice(launches)
        helper = ""
        if self.helper:
            body = self.pick("x * 5u + in[x & 255u]", "x ^ (uint)get_global_id(0) ^ (uint)get_global_size(0)",
                             "x + (uint)get_local_id(0)" if self.local_ids else "x + (uint)get_global_id(0)")
            helper = (f"uint help_{self.name}(uint x, __global const uint *in) {{\n"
                      f"  if (x > 1000u) return x >> 3;\n  return {body};\n}}\n")
        return (f"//! kernel {self.name}\n"
                "//! arguments buffer uint 256 below 4000, buffer uint 4096, buffer uint 8, "
                f"uint {self.random.randrange(12)}, uint {self.random.randrange(99)}\n"
                f"//! launch {chosen}\n" + helper +
                f"__kernel void {self.name}(__global const uint *in, __global uint *out,\n"
                "    __global uint *counters, uint n, uint seed) {\n" +
                "\n".join(self.lines) + "\n}\n")


def write(folder, start, end):
    """A file with the kernels from start to before end."""
    text = "#define MIX(x) ((x) * 7u + 3u)\n//! partly\n"
    text += "\n".join(Kernel(number).text() for number in range(start, end))
    file = folder / f"random{start}.cl"
    file.write_text(text)
    return file


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("first", type=int)
    parser.add_argument("count", type=int)
    parser.add_argument("--each", type=int, default=4, help="kernels a file")
    parser.add_argument("--folder", type=pathlib.Path)
    parser.add_argument("--compare", type=pathlib.Path)
    arguments = parser.parse_args()

    failed = 0
    end = arguments.first + arguments.count
    with tempfile.TemporaryDirectory() as scratch:
        folder = arguments.folder or pathlib.Path(scratch)
        folder.mkdir(parents=True, exist_ok=True)
        # A new cache, because a later run does not need what this one compiles.
        # Without PoCL 3.1's vectoriser, which compiles some variants that change
        # one place in memory twice wrongly; plain loops are right.
        environment = dict(os.environ, POCL_CACHE_DIR=str(folder / "cache"),
                           POCL_WORK_GROUP_METHOD="loops")
        for start in range(arguments.first, end, arguments.each):
            file = write(folder, start, min(start + arguments.each, end))
            if not arguments.compare:
                continue
            plans = PLANS[start // arguments.each % len(PLANS)]
            done = subprocess.run([arguments.compare, plans, file], env=environment,
                                  capture_output=True, text=True, check=False)
            if done.returncode != 0:
                failed += 1
                print(f"{plans} {file.name}: status {done.returncode}\n"
                      f"{done.stdout}{done.stderr[-2000:]}", flush=True)
            shutil.rmtree(folder / "cache", ignore_errors=True)
    print(f"kernels {arguments.first} to {end - 1}: {failed} files with failures")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()

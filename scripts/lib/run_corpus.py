"""Makes variants of the OpenCL sources in Debian's packages: see scripts/corpus."""

import argparse
import collections
import json
import pathlib
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

# Those of the default, two more dimensions, and two that are always legal.
PLANS = "g0S4,l0S4,g0S8,block:g0S8,l1S2,c0S4,g1S2,seq:g0S2,seq:g1S2"


class Package:
    """A package, its sources, and what its programs are built with."""

    def __init__(self, name, kind, options=(), many=False):
        self.name = name
        self.kind = kind
        self.options = options
        self.many = many  # only some of its files are looked at


PACKAGES = [
    Package("darktable", "photo editor", ["-I", "{folder}"]),
    Package("hashcat-data", "password cracker",
            ["-D", "KERNEL_STATIC", "-D", "VECT_SIZE=1", "-D", "DEVICE_TYPE=2",
             "-D", "DGST_R0=0", "-D", "DGST_R1=1", "-D", "DGST_R2=2",
             "-D", "DGST_R3=3", "-D", "DGST_ELEM=4", "-D", "KERN_TYPE=0",
             "-D", "ATTACK_EXEC=11", "-D", "ATTACK_KERN=0",
             "-D", "INCLUDE_PATH={folder}", "-D", "XM2S(x)=#x",
             "-D", "M2S(x)=XM2S(x)", "-I", "{folder}"], many=True),
    Package("python3-silx", "tomography in Python",
            ["-I", "{folder}", "-D", "NIMAGE=1024", "-D", "WORKGROUP=64",
             "-D", "BLOCK_SIZE=64", "-D", "MAX_CONST_SIZE=1024"]),
    Package("python3-pyfai", "diffraction in Python",
            ["-I", "{folder}", "-D", "NIMAGE=1024", "-D", "NBINS=100",
             "-D", "WORKGROUP_SIZE=64", "-D", "BLOCK_SIZE=64",
             "-D", "NBINS_LUT=10", "-D", "NLUT=10", "-D", "ON_CPU=0"]),
]


def unpacked(package, folder):
    """The folder with a package's files, which is downloaded once."""
    where = folder / package.name
    if not where.exists():
        folder.mkdir(parents=True, exist_ok=True)
        with tempfile.TemporaryDirectory(dir=folder) as fresh:
            subprocess.run(["apt-get", "--quiet", "--quiet", "download", package.name],
                           cwd=fresh, check=True, stderr=subprocess.DEVNULL)
            archive, = pathlib.Path(fresh).glob("*.deb")
            subprocess.run(["dpkg-deb", "-x", archive, where], check=True)
    return where


def options_for(package, file):
    return [option.replace("{folder}", str(file.parent)) for option in package.options]


class Outcome:
    """What became of the kernels of one file; none if it cannot be read."""

    def __init__(self, report):
        self.readable = "error" not in report
        self.made = collections.defaultdict(set)
        self.refused = collections.defaultdict(dict)
        for variant in report["variants"]:
            self.made[variant["kernel"]].add(variant["plan"])
        for refusal in report["refusals"]:
            self.refused[refusal["kernel"]][refusal["plan"]] = refusal["reason"]
        self.kernels = set(self.made) | set(self.refused)


def coarsen(generator, file, options, output, report):
    subprocess.run([generator, file, "--plans", PLANS, "--output", output,
                    "--refusals", report, "--", *options],
                   stderr=subprocess.DEVNULL, timeout=600, check=False)
    return Outcome(json.loads(pathlib.Path(report).read_text(encoding="utf-8")))


class Counts:
    """The figures of one package."""

    def __init__(self):
        self.files = self.readable = self.broken = 0
        self.kernels = self.with_ids = self.varied = self.jammed = 0
        self.reasons = collections.Counter()

    def add_kernel(self, outcome, kernel):
        reasons = set(outcome.refused[kernel].values())
        plans = outcome.made[kernel]
        self.kernels += 1
        if not plans and reasons <= {"no-ids"}:
            return
        self.with_ids += 1
        self.varied += bool(plans)
        self.jammed += any(not plan.startswith("seq:") for plan in plans)
        if not plans:
            self.reasons.update(reasons - {"no-ids"})

    def __add__(self, other):
        total = Counts()
        for name, value in vars(self).items():
            setattr(total, name, value + getattr(other, name))
        return total


def count(package, arguments):
    counts = Counts()
    files = sorted(unpacked(package, arguments.folder).rglob("*.cl"))
    for file in files[::arguments.every] if package.many else files:
        with tempfile.TemporaryDirectory() as folder:
            output = f"{folder}/with-variants.cl"
            options = options_for(package, file)
            outcome = coarsen(arguments.generator, file, options, output,
                              f"{folder}/report.json")
            counts.files += 1
            if not outcome.readable or not outcome.kernels:
                continue
            counts.readable += 1
            for kernel in outcome.kernels:
                counts.add_kernel(outcome, kernel)
            again = coarsen(arguments.generator, output, options, f"{folder}/again.cl",
                            f"{folder}/again.json")
            if not again.readable:
                counts.broken += 1
                print(f"cannot be read with its variants: {file}", file=sys.stderr)
    return counts


def part(some, whole):
    return f"{some} ({100 * some / whole:.0f} %)" if whole else "0"


def print_tables(rows):
    print("| Sources | Files | With kernels | Kernels | With ids of x or y "
          "| With a variant | Jammed |")
    print("|---|---|---|---|---|---|---|")
    for kind, counts in rows:
        print(f"| {kind} | {counts.files} | {counts.readable} | {counts.kernels} "
              f"| {counts.with_ids} | {part(counts.varied, counts.with_ids)} "
              f"| {part(counts.jammed, counts.with_ids)} |")
    total = rows[-1][1]
    print("\n| Reason to refuse | Kernels without any variant |\n|---|---|")
    for reason, kernels in total.reasons.most_common():
        print(f"| `{reason}` | {kernels} |")
    print(f"\nFiles that cannot be read with their variants: {total.broken}")


def main():
    parser = argparse.ArgumentParser(usage="scripts/corpus")
    parser.add_argument("--generator", default=ROOT / "build/release/corvane-coarsen")
    parser.add_argument("--folder", type=pathlib.Path, default=ROOT / "build/corpus")
    parser.add_argument("--every", type=int, default=8)
    arguments = parser.parse_args()
    rows = [(package.kind, count(package, arguments)) for package in PACKAGES]
    rows.append(("all", sum((counts for _, counts in rows), Counts())))
    print_tables(rows)
    sys.exit(1 if rows[-1][1].broken else 0)


if __name__ == "__main__":
    main()

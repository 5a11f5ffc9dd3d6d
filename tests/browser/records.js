// Writes run records that no program has made, for the tests of corvane's page.

const fs = require("node:fs");
const path = require("node:path");

/// The record of a run, line by line.
class Record {
  constructor({ program = "/opt/app/solve", device = "cpu-haswell", kernels = [], lookAlikes = [] } = {}) {
    this.lines = [];
    this.launches = [];
    this.add("process", { format: "corvane-run", version: 1, library: "1.0.0", program, host: "node7", pid: 1,
      start: "2024-02-29T23:59:58Z", settings: {} });
    this.add("device", { device: 0, name: device, vendor: "Maker", version: "OpenCL 3.0", driver: "3.1",
      type: "CPU", units: 16, localMemory: 524288 });
    this.add("program", { program: 0, hash: "0123abcd", options: "-DN=4", kernels, lookAlikes, spills: false });
  }

  add(kind, fields) { this.lines.push(JSON.stringify({ kind, ...fields })); }

  /// A configuration with the samples of each version. What is not there: a
  /// list for a version that did not run. \p refusals and \p wrong are by
  /// version.
  configuration(kernel, { global = [1024], local = [64], launches = 1, samples, refusals = {}, wrong = {}, untunable }) {
    const number = this.launches.length;
    const variants = [...Object.keys(samples), ...Object.keys(refusals)].filter((v) => v !== "baseline");
    this.add("configuration", { configuration: number, program: 0, device: 0, kernel, global, local, untunable,
      variants: [...new Set(variants)].map((spec) => ({ spec, refusal: refusals[spec] })) });
    for (const [version, times] of Object.entries(samples)) {
      for (const microseconds of times) this.add("sample", { configuration: number, version, microseconds });
      if (wrong[version])
        this.add("check", { configuration: number, version, result: "different", ...wrong[version] });
      // After the first run and at the last.
      else for (const result of ["equal", "equal"])
        this.add("check", { configuration: number, version, result });
    }
    this.launches.push({ configuration: number, version: "baseline", launches });
    return this;
  }

  /// Writes it as the only run of a new tuned folder.
  write(folder, command) {
    this.add("end", { launches: this.launches.reduce((sum, { launches }) => sum + launches, 0),
      tunedLaunches: this.launches.length, byVersion: this.launches, secondsAdded: 0.25 });
    const run = path.join(folder, "runs", "solve-node7-1");
    fs.rmSync(folder, { recursive: true, force: true });
    fs.mkdirSync(run, { recursive: true });
    fs.writeFileSync(path.join(run, "run.jsonl"), `${this.lines.join("\n")}\n`);
    if (command) fs.writeFileSync(path.join(run, "command.json"), JSON.stringify(command));
  }
}

/// Seven times about this one, no two of them the same.
const about = (time) => [0, 1, 2, 3, 4, 5, 6].map((i) => time * (1 + .01 * ((i * 3) % 7 - 3)));

function ordinary() {
  return new Record({
    kernels: [{ kernel: "matmul", variants: ["g0S2", "g0S4", "l0S2", "g1S2", "g0S16"] },
      { kernel: "copy", variants: ["g0S2"] }, { kernel: "fill", variants: ["g0S2"] }, { kernel: "bare", variants: [] }],
    lookAlikes: [{ name: "matmul_coarsed_g4", reason: "an item has too few numbers" }],
  }).configuration("matmul", {
    global: [1022, 512], local: [2, 4], launches: 100,
    samples: { baseline: about(8000), g0S2: about(4000), g0S4: about(2000), l0S2: [900], g1S2: about(8010) },
    refusals: { g0S16: "1022 is not a multiple of 256" },
    wrong: { l0S2: { argument: 2, element: 17, expected: "1.5", actual: "nan" } },
  }).configuration("copy", { launches: 3000, samples: { baseline: about(120), g0S2: about(120) } })
    .configuration("copy", { global: [2048], local: null, launches: 10, samples: { baseline: about(240), g0S2: about(100) } })
    .configuration("fill", { launches: 5, samples: {}, untunable: "the kernel gets memory that cannot be saved" });
}

const hostileNames = [
  "</script><script>ran(1)</script>", "\"><img src=x onerror=ran(2)>", "' onmouseover='ran(3)", "<!--", "-->", "]]>",
  "<plaintext>", "javascript:ran(5)", "&lt;b&gt;&amp;", "__proto__", "constructor", "toString", "../../outside",
  "größe 🍌", "\u202etxt.exe", "\u0000\u001b[2J", "${ran(6)}", "`+ran(7)+`", "@DATA@", "k".repeat(5000), "", " ",
];

function hostile() {
  const record = new Record({ program: `/opt/${hostileNames[0]}`, device: hostileNames[1],
    kernels: hostileNames.map((kernel) => ({ kernel, variants: hostileNames })),
    lookAlikes: hostileNames.map((name) => ({ name, reason: name })) });
  for (const name of hostileNames)
    record.configuration(name, { samples: { baseline: about(10), [`${name}2`]: about(5), g0S4: about(1) },
      refusals: { [`${name}3`]: name }, wrong: { g0S4: { argument: 0, element: 0, expected: name, actual: name } } });
  return record;
}

/// As many as a page has to open fast with: 100 000 samples of 2 000
/// configurations with 8 versions, nearly.
function large() {
  const specs = ["baseline", "g0S2", "g0S4", "g0S8", "l0S2", "l0S4", "c0S4", "g1S2"];
  const record = new Record({ kernels: [{ kernel: "k", variants: specs.slice(1) }] });
  for (let i = 0; i !== 2000; ++i)
    record.configuration(`k${i % 50}`, { global: [1024 + i], launches: i,
      samples: Object.fromEntries(specs.map((spec, j) => [spec, about(100 + (i * 7 + j * 13) % 97)])) });
  return record;
}

module.exports = { ordinary, hostile, hostileNames, large, about };

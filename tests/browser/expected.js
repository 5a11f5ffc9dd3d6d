// Computes what a report has to show from autotune.csv and .auto.csv.

const fs = require("node:fs");
const path = require("node:path");

const folder = process.env.CORVANE_REPORT;
if (!folder) throw new Error("CORVANE_REPORT must name a folder with a report");

function rowsOf(file) {
  const lines = fs.readFileSync(path.join(folder, file), "utf8").split("\n");
  return lines.slice(1, -1).map((line) => line.split(","));
}

/// Rows by configuration, in order of first appearance. A row has its number,
/// counted from 1 after the header.
function groupByConfig(rows) {
  const configs = new Map();
  rows.forEach((fields, index) => {
    const key = fields.slice(0, 7).join(",");
    if (!configs.has(key)) configs.set(key, { key, rows: [] });
    const [version, time] = fields.slice(7);
    configs.get(key).rows.push({ number: index + 1, version, time: Number(time) });
  });
  return [...configs.values()];
}

function timesByVersion(rows) {
  const times = new Map();
  for (const { version, time } of rows)
    times.set(version, [...(times.get(version) ?? []), time]);
  return times;
}

function title(key) {
  const [kernel, ...sizes] = key.split(",");
  const dimensions = ["x", "y", "z"].map((name, i) =>
    sizes[i] === "" ? "" : `${name}:${sizes[i]}/${sizes[i + 3]}`);
  return `${kernel} [ ${dimensions.filter((text) => text !== "").join(", ")} ]`;
}

const sum = (values) => values.reduce((total, value) => total + value, 0);

function statistics(times) {
  const sorted = [...times].sort((a, b) => a - b);
  const mean = sum(sorted) / sorted.length;
  return {
    min: sorted[0],
    max: sorted[sorted.length - 1],
    median: sorted[Math.floor(sorted.length / 2)],
    mean,
    stddev: Math.sqrt(sum(sorted.map((t) => (t - mean) ** 2)) / sorted.length),
  };
}

/// The configurations of the results table, each with its versions from the
/// fastest to the slowest.
function readConfigs() {
  return groupByConfig(rowsOf("autotune.csv")).map(({ key, rows }) => {
    const times = [...timesByVersion(rows)];
    const versions = times.map(([name, t]) => ({ name, ...statistics(t) }));
    return {
      key,
      title: title(key),
      page: `${key.split(",").join("_")}.html`,
      versions: versions.sort((a, b) => a.mean - b.mean),
      samples: Math.min(...times.map(([, t]) => t.length)),
      lines: [rows[0].number, rows[rows.length - 1].number],
    };
  });
}

/// The times of a configuration in the order of the log, by version.
function readLog(key) {
  const config = groupByConfig(rowsOf(".auto.csv")).find((c) => c.key === key);
  return timesByVersion(config.rows);
}

/// The time as C's "%g" writes it: a tie is rounded to the even digit, not up as by
/// toPrecision.
function sixDigits(time) {
  const digits = time.toPrecision(60).replace(".", "").replace(/^0+/, "");
  const down = /^\d{5}[02468]50*$/.test(digits);
  return Number((down ? time * (1 - 1e-9) : time).toPrecision(6));
}

module.exports = { folder, readConfigs, readLog, sixDigits };

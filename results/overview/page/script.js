"use strict";
// Builds the page from the data in it. Names come from records that anyone may
// have written: they are put on the page as text, never as markup.

(() => {
const data = JSON.parse(document.getElementById("data").textContent);
const svgSpace = "http://www.w3.org/2000/svg";
const palette = ["#0072b2", "#d55e00", "#009e73", "#cc79a7", "#b8860b", "#56b4e9", "#8c564b", "#7f5fc7"];
const winnerColor = "var(--accent)", originalColor = "var(--ink)", greyColor = "var(--grey)";

function fill(element, attributes, children) {
  for (const [name, value] of Object.entries(attributes ?? {}))
    if (name === "on")
      for (const [event, listener] of Object.entries(value)) element.addEventListener(event, listener);
    else if (value !== false && value !== null && value !== undefined)
      element.setAttribute(name, value === true ? "" : value);
  element.append(...children.filter((child) => child !== null && child !== undefined));
  return element;
}
const make = (tag, attributes, ...children) => fill(document.createElement(tag), attributes, children);
const draw = (tag, attributes, ...children) => fill(document.createElementNS(svgSpace, tag), attributes, children);

// Characters that would reorder or hide the text around them become visible.
const plain = (text) => String(text).replace(/[\u0000-\u001f\u007f-\u009f\u200b-\u200f\u202a-\u202e\u2066-\u2069\ufeff]/g, "\ufffd");

// A name that is too long for its column breaks anywhere.
const named = (text) => text.length > 40 ? make("span", { class: "long" }, plain(text)) : plain(text);

const fixed = (value, digits) => Number.isFinite(value) ? value.toFixed(digits) : "?";
function duration(us) {
  if (us < 1e3) return `${fixed(us, 1)} µs`;
  if (us < 1e6) return `${fixed(us / 1e3, 2)} ms`;
  return `${fixed(us / 1e6, 2)} s`;
}
const times = (gain) => `${fixed(gain, 2)}×`;
const count = (n) => n.toLocaleString("en");
const baseName = (path) => path.split(/[\\/]/).pop() || path;
const distinct = (values) => [...new Set(values.filter((value) => value !== undefined && value !== ""))];
const sizesText = ({ global, local }) => global.join("×") + (local ? ` / ${local.join("×")}` : "");
const versionText = (version) => version === "baseline" ? "original" : plain(version);

function gainOf(config, version) {
  const original = config.versions.find(({ version: name }) => name === "baseline");
  return original?.median > 0 && version?.median > 0 ? original.median / version.median : null;
}
function intervalText({ interval }) {
  if (!interval) return "";
  const most = interval[0] > 0 ? times(1 / interval[0]) : "any";
  return `${interval[1] === null ? times(0) : times(1 / interval[1])} to ${most}`;
}
const usedOf = (config) => config.versions.find(({ version }) => version === config.winner);
const classOf = (text) => ({ faster: "faster", winner: "winner", "no difference": "grey", "not tuned": "grey",
  "nothing to choose from": "grey", "too few samples": "grey", refused: "grey", "did not run": "grey",
  "wrong results": "wrong", "cannot be checked": "wrong" })[text] ?? "";

// What a spec does, by program and kernel, as the programs tell it.
const wordsBySpec = new Map();
for (const program of data.programs)
  for (const kernel of program.kernels)
    for (const { spec, words } of kernel.variants) wordsBySpec.set(spec, words);

// ---- the summary

function facts(entries) {
  return make("dl", { class: "facts" }, ...entries.filter(([, value]) => value !== "").map(([term, value]) =>
    make("div", {}, make("dt", {}, term), make("dd", {}, plain(value)))));
}

function commandsText() {
  return distinct(data.runs.map(({ command }) => command.map((word) =>
    /^[\w@%+=:,./-]+$/.test(word) ? word : `'${word}'`).join(" "))).join("; ");
}

function dates() {
  const starts = distinct(data.runs.map(({ start }) => start)).sort();
  const shown = (start) => start.replace("T", " ").replace(/Z$/, " UTC");
  if (starts.length === 0) return "";
  return starts.length === 1 ? shown(starts[0]) : `${shown(starts[0])} to ${shown(starts[starts.length - 1])}`;
}

const wrongOnes = [...new Map(data.configurations.flatMap((config) =>
  config.versions.filter(({ verdict }) => verdict === "wrong results")
    .map((version) => [JSON.stringify([config.program, config.kernel, version.version]),
      `${config.kernel}, ${version.version}: ${version.why}`]))).values()];

function titled(title, lines) {
  if (lines.length === 0) return null;
  const some = lines.slice(0, 8), rest = lines.slice(8);
  const list = (texts) => make("ul", { class: "plain" }, ...texts.map((text) => make("li", {}, plain(text))));
  return make("section", {}, make("h2", {}, title), list(some),
    rest.length === 0 ? null : make("details", {}, make("summary", {}, `${rest.length} more`), list(rest)));
}

function summary() {
  const programs = distinct(data.runs.map(({ program }) => program && baseName(program)));
  const saved = data.time > 0 ? 1 - data.timeWithWinners / data.time : 0;
  const title = programs.length === 0 ? "Kernel versions" : `Kernel versions of ${programs.join(", ")}`;
  document.title = plain(title);
  const devices = data.devices.filter(({ name }) => name !== "");
  const decided = data.configurations.filter(({ outcome }) => outcome === "faster").length;
  const command = commandsText();
  document.getElementById("summary").append(
    make("h1", {}, plain(title)),
    command === "" ? "" : make("p", { class: "command" }, make("code", {}, plain(command))),
    make("p", { class: "remark" }, plain(data.remark).replace(/ %/g, "\u00a0%")),
    facts([
      ["Kernel time with the originals", data.time > 0 ? duration(data.time) : ""],
      ["With the fastest versions", data.time > 0 ? `${duration(data.timeWithWinners)}${saved > 0 ? `, ${fixed(100 * saved, saved < .1 ? 1 : 0)} % less` : ""}` : ""],
      ["Launches", count(data.launches)],
      ["Configurations", `${count(data.configurations.length)}, of which ${count(decided)} use a variant`],
      ["Refused as wrong", wrongOnes.length === 0 ? "no variant" : wrongOnes.length === 1 ? "1 variant" : `${wrongOnes.length} variants`],
      [devices.length > 1 ? "Devices" : "Device", devices.map(({ name, vendor }) => vendor ? `${name} (${vendor})` : name).join("; ")],
      [devices.length > 1 ? "Drivers" : "Driver", distinct(devices.map(({ driver }) => driver)).join("; ")],
      ["Host", distinct(data.runs.map(({ host }) => host)).join(", ")],
      ["Date", dates()],
      ["Runs", data.runs.length > 1 ? count(data.runs.length) : ""],
    ]),
    titled("Longest without a gain", data.obstacles) ?? "",
    titled("Variants with wrong results, which are never used", wrongOnes) ?? "");
}

// ---- the distributions

const scaleFor = (values, from, to) => {
  let low = Infinity, high = 0;
  for (const value of values) {
    if (value > 0 && value < low) low = value;
    if (value > high) high = value;
  }
  if (!(high > 0)) return { at: () => from, ticks: [] };
  // Times that lie far apart share a logarithmic scale.
  const isWide = high / low > 20;
  const low0 = isWide ? low : Math.max(0, low - (high - low) * .1), high0 = high > low0 ? high : low0 + 1;
  const part = isWide ? (v) => Math.log(Math.max(v, low) / low) / Math.log(high0 / low)
    : (v) => (v - low0) / (high0 - low0);
  const value = isWide ? (p) => low * (high0 / low) ** p : (p) => low0 + p * (high0 - low0);
  return { at: (v) => from + (to - from) * part(v), isWide,
    ticks: [0, .25, .5, .75, 1].map((p) => ({ at: from + (to - from) * p, value: value(p) })) };
};
const quantile = (sorted, p) => sorted[Math.min(sorted.length - 1, Math.floor(p * sorted.length))];

// At most so many samples are drawn one by one; the box is of all.
const mostDots = 400;
function thinned(sorted) {
  if (sorted.length <= mostDots) return sorted;
  return Array.from({ length: mostDots }, (_, i) => sorted[Math.round(i * (sorted.length - 1) / (mostDots - 1))]);
}

function colorOf(config, version) {
  if (version.version === "baseline") return originalColor;
  if (version.version === config.winner) return winnerColor;
  if (version.verdict === "no difference") return greyColor;
  return palette[config.versions.indexOf(version) % palette.length];
}

function strip(config, version, scale, color) {
  if (version.samples.length === 0) return null;
  const sorted = [...version.samples].sort((a, b) => a - b);
  const isOriginal = version.version === "baseline";
  const y = 12;
  const x = (value) => scale.at(value).toFixed(1);
  const original = config.versions.find((other) => other.version === "baseline");
  const label = `${versionText(version.version)}: ${sorted.length} samples, ` +
    `${duration(sorted[0])} to ${duration(sorted[sorted.length - 1])}, median ${duration(version.median)}`;
  return draw("svg", { class: isOriginal ? "strip strong" : "strip", viewBox: "0 0 256 24", role: "img", style: `color:${color}`, "aria-label": label },
    draw("title", {}, label),
    draw("line", { class: "axis", x1: 4, x2: 252, y1: y, y2: y }),
    original?.median > 0 && !isOriginal
      ? draw("line", { class: "reference", x1: x(original.median), x2: x(original.median), y1: 0, y2: 24 }) : null,
    draw("line", { class: "range", x1: x(sorted[0]), x2: x(sorted[sorted.length - 1]), y1: y, y2: y }),
    draw("rect", { class: "box", x: x(quantile(sorted, .25)), y: 5, height: 14,
      width: Math.max(1, scale.at(quantile(sorted, .75)) - scale.at(quantile(sorted, .25))).toFixed(1) }),
    draw("path", { class: "dots", d: thinned(sorted).map((value) => `M${x(value)} ${y}h0`).join("") }),
    draw("line", { class: "median", x1: x(version.median), x2: x(version.median), y1: 3, y2: 21 }));
}

// ---- every time of a configuration

function plot(config, shown) {
  const width = 760, height = 260, left = 70, right = 12, top = 10, bottom = 34;
  const versions = config.versions.filter(({ samples }) => samples.length !== 0);
  const longest = versions.reduce((most, { samples }) => Math.max(most, samples.length), 0);
  const scale = scaleFor(versions.filter(({ version }) => shown.has(version)).flatMap(({ samples }) => samples), height - bottom, top);
  const x = (i) => left + (width - left - right) * (longest > 1 ? i / (longest - 1) : .5);
  return draw("svg", { class: "plot", viewBox: `0 0 ${width} ${height}`, role: "img", "aria-label": "The time of each run in its order" },
    ...scale.ticks.flatMap(({ at, value }) => [
      draw("line", { class: "grid", x1: left, x2: width - right, y1: at, y2: at }),
      draw("text", { x: left - 6, y: at + 4, "text-anchor": "end" }, duration(value))]),
    draw("text", { x: left, y: height - 12 }, "first run"),
    draw("text", { x: width - right, y: height - 12, "text-anchor": "end" }, `run ${longest}`),
    ...versions.map((version) => shown.has(version.version) ? draw("path", {
      class: version.version === "baseline" ? "strong" : null, style: `stroke:${colorOf(config, version)}`,
      d: version.samples.map((value, i) => `M${x(i).toFixed(1)} ${scale.at(value).toFixed(1)}h0`).join("") },
      draw("title", {}, versionText(version.version))) : null));
}

function everyTime(config) {
  const versions = config.versions.filter(({ samples }) => samples.length !== 0);
  const shown = new Set(versions.map(({ version }) => version));
  const place = make("div", { class: "scroll" }, plot(config, shown));
  const boxes = versions.map((version) => make("label", {},
    make("input", { type: "checkbox", checked: true, on: { change: ({ target }) => {
      if (target.checked) shown.add(version.version); else shown.delete(version.version);
      place.replaceChildren(plot(config, shown));
    } } }),
    make("i", { style: `background:${colorOf(config, version)}` }), versionText(version.version)));
  const numbers = make("details", {}, make("summary", {}, "As numbers, in microseconds"));
  numbers.addEventListener("toggle", () => {
    if (numbers.childElementCount === 1)
      numbers.append(make("pre", {}, versions.map(({ version, samples }) =>
        `${versionText(version)}: ${samples.join(", ")}`).join("\n")));
  });
  return make("div", {}, make("fieldset", { class: "legend" }, make("legend", {}, "Versions"), ...boxes), place, numbers);
}

// ---- one configuration

const cell = (label, attributes, ...children) =>
  make("td", { "data-label": label, ...attributes },
    ...(children.every((child) => child === "" || child === null) ? [] : [make("span", { class: "value" }, ...children)]));

function versionRow(config, version, scale) {
  const gain = version.version === "baseline" ? null : gainOf(config, version);
  const words = wordsBySpec.get(version.version) ?? "";
  const tone = classOf(version.verdict);
  // Of versions that were compared, the figures say why.
  const why = version.interval ? "" : (version.why ?? "").replace(`${version.verdict}: `, "");
  return make("tr", { class: version.version === "baseline" ? "original" : tone === "grey" ? "grey" : null },
    make("th", { scope: "row" }, make("span", { class: "name" }, named(versionText(version.version))),
      words === "" ? null : make("span", { class: "words" }, plain(words))),
    cell("Times", {}, strip(config, version, scale, colorOf(config, version))),
    cell("Median", { class: "number" }, version.median === undefined ? "" : duration(version.median)),
    cell("Gain", { class: "number" }, gain === null ? "" : times(gain)),
    cell("95 % interval", { class: "number" }, intervalText(version)),
    cell("Samples", { class: "number" }, count(version.samples.length)),
    cell("Launches", { class: "number" }, version.launches ? count(version.launches) : ""),
    cell("Check", {}, version.check === "not checked" && version.samples.length === 0 ? "" : version.check),
    cell("Result", {}, make("span", { class: tone }, version.verdict),
      why === "" ? null : make("span", { class: "words" }, plain(why))));
}

function details(config) {
  const scale = scaleFor(config.versions.flatMap(({ samples }) => samples), 8, 248);
  const titles = ["Version", "Times", "Median", "Gain", "95 % interval", "Samples", "Launches", "Check", "Result"];
  const numeric = new Set(["Median", "Gain", "95 % interval", "Samples", "Launches"]);
  const opener = make("button", { class: "plain", "aria-expanded": "false", on: { click: () => {
    const open = opener.getAttribute("aria-expanded") !== "true";
    opener.setAttribute("aria-expanded", open);
    opener.textContent = open ? "Hide the times" : "Show every time";
    if (open) place.replaceChildren(everyTime(config)); else place.replaceChildren();
  } } }, "Show every time");
  const place = make("div", {});
  return make("div", {},
    make("p", {}, plain(config.why)),
    make("div", { class: "scroll" }, make("table", { class: "versions folding" },
      make("thead", {}, make("tr", {}, ...titles.map((title) =>
        make("th", { scope: "col", class: numeric.has(title) ? "number" : null }, title)))),
      make("tbody", {}, ...config.versions.map((version) => versionRow(config, version, scale))))),
    config.versions.some(({ samples }) => samples.length !== 0) ? opener : null, place,
    ...config.versions.filter(({ text }) => text).map(({ version, text }) =>
      make("details", {}, make("summary", {}, `The text of ${versionText(version)}`), make("pre", {}, plain(text)))));
}

// ---- the table of configurations

const outcomes = distinct(data.configurations.map(({ outcome }) => outcome));
const largest = data.configurations.reduce((most, { time }) => Math.max(most, time), 0);
const columns = [
  { title: "Kernel", text: (c) => c.kernel },
  { title: "Sizes", text: sizesText, order: (c) => c.global.reduce((product, size) => product * size, 1) },
  data.devices.length > 1 && { title: "Device", text: (c) => `${data.devices[c.device].name}, ${data.devices[c.device].driver}` },
  data.programs.length > 1 && { title: "Program", text: (c) => data.programs[c.program].hash.slice(0, 8) },
  { title: "Launches", number: true, text: (c) => count(c.launches), order: (c) => c.launches },
  { title: "Kernel time", number: true, text: (c) => c.time > 0 ? duration(c.time) : "", order: (c) => c.time,
    aside: (c) => c.time > 0 ? make("span", { class: "bar", "aria-hidden": "true" }, make("i", { style: `width:${(100 * c.time / largest).toFixed(1)}%` })) : null },
  { title: "Uses", text: (c) => versionText(c.winner) },
  { title: "Gain", number: true, order: (c) => gainOf(c, usedOf(c)) ?? 0,
    text: (c) => c.winner === "baseline" ? "" : times(gainOf(c, usedOf(c)) ?? 1) },
  { title: "Outcome", text: (c) => c.outcome, tone: true },
].filter(Boolean);

/// A configuration with its rows, which are made when they are first shown.
class Entry {
  constructor(config) {
    this.config = config;
    this.search = [config.kernel, sizesText(config), config.outcome, ...config.versions.map(({ version }) => version)]
      .join(" ").toLowerCase();
  }

  rows() {
    this.row ??= this.makeRow();
    return this.details ? [this.row, this.details] : [this.row];
  }

  makeRow() {
    const { config } = this;
    const opener = make("button", { class: "opener name", "aria-expanded": "false", on: { click: () => {
      this.details ??= make("tr", { class: "details", hidden: true }, make("td", { colspan: columns.length }, details(config)));
      this.row.after(this.details);
      this.details.hidden = !this.details.hidden;
      opener.setAttribute("aria-expanded", !this.details.hidden);
    } } }, named(config.kernel));
    return make("tr", { class: "config" }, make("th", { scope: "row" }, opener),
      ...columns.slice(1).map((column) => cell(column.title, { class: column.number ? "number" : null },
        column.tone ? make("span", { class: classOf(column.text(config)) }, column.text(config)) : named(column.text(config)),
        column.aside?.(config) ?? null)));
  }
}

// How many rows are shown at first, so that a page with very many opens fast.
const mostRows = 200;

function configurations() {
  if (data.configurations.length === 0) return [];
  let entries = data.configurations.map((config) => new Entry(config));
  let limit = mostRows;
  const body = make("tbody", {});
  const shownCount = make("span", { id: "count", role: "status" });
  const filter = make("input", { type: "search", id: "filter", autocomplete: "off", spellcheck: "false" });
  const outcome = make("select", { id: "outcome" }, make("option", { value: "" }, "any"),
    ...outcomes.map((text) => make("option", { value: text }, text)));
  const more = make("button", { class: "plain", id: "more" });

  const place = () => {
    const words = filter.value.toLowerCase().split(/\s+/).filter(Boolean);
    const fitting = entries.filter(({ search, config }) => words.every((word) => search.includes(word)) &&
      (outcome.value === "" || config.outcome === outcome.value));
    body.replaceChildren(...fitting.slice(0, limit).flatMap((entry) => entry.rows()));
    shownCount.textContent = `${count(fitting.length)} of ${count(entries.length)} configurations`;
    more.hidden = fitting.length <= limit;
    more.textContent = `Show all ${count(fitting.length)}`;
  };
  filter.addEventListener("input", place);
  outcome.addEventListener("change", place);
  more.addEventListener("click", () => { limit = Infinity; place(); });

  const sortBy = (column, head) => {
    // Names ascend first, amounts descend.
    const [first, second] = column.order ? ["descending", "ascending"] : ["ascending", "descending"];
    const now = head.getAttribute("aria-sort") === first ? second : first;
    heads.forEach((other) => other.removeAttribute("aria-sort"));
    head.setAttribute("aria-sort", now);
    const value = column.order ?? column.text, sign = now === "ascending" ? 1 : -1;
    entries = entries.map((entry) => ({ entry, key: value(entry.config) }))
      .sort((a, b) => a.key < b.key ? -sign : a.key > b.key ? sign : 0).map(({ entry }) => entry);
    place();
  };
  const heads = columns.map((column) => {
    const head = make("th", { scope: "col", class: column.number ? "number" : null },
      make("button", { on: { click: () => sortBy(column, head) } }, column.title));
    return head;
  });
  heads[columns.findIndex(({ title }) => title === "Kernel time")].setAttribute("aria-sort", "descending");

  place();
  return [make("h2", {}, "Configurations by kernel time"),
    make("div", { class: "controls" }, make("label", { for: "filter" }, "Filter by kernel, sizes or version", filter),
      make("label", { for: "outcome" }, "Outcome", outcome), shownCount),
    make("table", { class: "configs folding" }, make("thead", {}, make("tr", {}, ...heads)), body), more];
}

// ---- programs and runs

function programs() {
  if (data.programs.length === 0) return [];
  const kernelText = ({ kernel, variants }) => variants.length === 0 ? `${kernel}: no variants`
    : `${kernel}: ${variants.map(({ spec }) => spec).join(", ")}`;
  return [make("h2", {}, "Programs"), ...data.programs.map((program) => make("details", { class: "more" },
    make("summary", {}, program.hash === "" ? "Not named by the log" : `Program ${plain(program.hash.slice(0, 8))}`, program.options ? ", built with " : "",
      program.options ? make("code", {}, plain(program.options)) : ""),
    make("ul", { class: "plain" }, ...program.kernels.map((kernel) => make("li", {}, plain(kernelText(kernel)))),
      ...program.lookAlikes.map(({ name, reason }) => make("li", {}, plain(`${name} looks like a variant and is not: ${reason}`)))),
    program.notGenerated ? make("p", {}, plain(`No variants were generated: ${program.notGenerated}`)) : null,
    program.spills ? make("p", {}, "The build log says that a variant spills registers.") : null))];
}

function runs() {
  if (data.runs.length === 0) return [];
  const titles = ["Run", "Program", "Host", "Start", "Launches", "Seconds added", "End"];
  const rows = data.runs.map((run) => make("tr", {},
    make("th", { scope: "row" }, make("span", { class: "name" }, named(run.name))),
    cell("Program", {}, named(run.program ?? "")), cell("Host", {}, named(run.host ?? "")),
    cell("Start", {}, plain(run.start ?? "")),
    cell("Launches", { class: "number" }, run.launches === undefined ? "" : count(run.launches)),
    cell("Seconds added", { class: "number" }, run.secondsAdded === undefined ? "" : fixed(run.secondsAdded, 2)),
    cell("End", {}, (run.source === "log" ? "a timing log" : run.ended ? "ended" : "was killed or still runs") +
      (run.unusableLines ? `; ${run.unusableLines} lines could not be used` : ""))));
  return [make("h2", {}, "Runs"), make("details", { class: "more" }, make("summary", {}, `${count(data.runs.length)} in all`),
    make("table", { class: "folding" }, make("thead", {}, make("tr", {}, ...titles.map((title) => make("th", { scope: "col" }, title)))),
      make("tbody", {}, ...rows)))];
}

summary();
document.getElementById("report").append(...configurations(), ...programs(), ...runs());
})();

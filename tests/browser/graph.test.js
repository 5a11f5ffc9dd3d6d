// Tests of the graph of each configuration: what is drawn, and what the boxes change.

const assert = require("node:assert/strict");
const { after, before, test } = require("node:test");
const { Report } = require("./browser.js");
const { readConfigs, readLog, sixDigits } = require("./expected.js");

const configs = readConfigs();
let report;
before(async () => { report = await Report.open(); });
after(() => report.close());

/// The names in the legend, each with the colour of its line.
const legendOf = (frame) =>
  frame.locator(".dygraph-legend > span").evaluateAll((entries) =>
    entries.map((entry) => {
      const line = entry.querySelector(".dygraph-legend-line");
      return [entry.innerText.trim(), getComputedStyle(line).borderBottomColor];
    }));
const namesIn = async (frame) => (await legendOf(frame)).map(([name]) => name);

/// How many pixels of the graph have the colour, or nearly so.
const pixelsOf = (frame, colour) => frame.evaluate((text) => {
  const wanted = text.match(/\d+/g).map(Number);
  let count = 0;
  for (const canvas of document.querySelectorAll("canvas")) {
    // Reads a copy: the browser would warn about reads of the page's own canvas.
    const copy = new OffscreenCanvas(canvas.width, canvas.height)
      .getContext("2d", { willReadFrequently: true });
    copy.drawImage(canvas, 0, 0);
    const { data } = copy.getImageData(0, 0, canvas.width, canvas.height);
    for (let i = 0; i < data.length; i += 4)
      if (data[i + 3] > 64 && wanted.every((c, k) => Math.abs(c - data[i + k]) < 8))
        ++count;
  }
  return count;
}, colour);

const atFirst = ({ versions }) => versions
  .filter(({ name }, rank) => rank === 0 || name === "baseline")
  .map(({ name }) => name);

for (const config of configs) {
  test(`${config.title}: first the fastest and the original are drawn`, async () => {
    const { graph } = await report.show(config);
    const legend = await legendOf(graph);
    assert.deepEqual(legend.map(([name]) => name), atFirst(config));
    for (const [name, colour] of legend)
      assert.ok(await pixelsOf(graph, colour) > 20, `no line of ${name}`);
  });

  test(`${config.title}: the curves are the log's, cut to the shortest`, async () => {
    const { graph } = await report.show(config);
    const drawn = await graph.evaluate(() => {
      const rows = [...Array(g.numRows()).keys()];
      return g.getLabels().map((name, column) =>
        [name, rows.map((row) => g.getValue(row, column))]);
    });
    const log = readLog(config.key);
    const rows = [...Array(config.samples).keys()];
    assert.deepEqual(drawn, [
      ["iter", rows.map((row) => row + 1)],
      ...config.versions.map(({ name }) =>
        [name, log.get(name).slice(0, config.samples).map(sixDigits)]),
    ]);
  });

  test(`${config.title}: a box shows and hides its version`, async () => {
    const { graph } = await report.show(config);
    const visible = new Set(atFirst(config));
    const assertShown = async () => {
      const wanted = config.versions.map(({ name }) => name)
        .filter((name) => visible.has(name));
      assert.deepEqual(await namesIn(graph), wanted);
      for (const [name, colour] of await legendOf(graph))
        assert.ok(await pixelsOf(graph, colour) > 20, `no line of ${name}`);
    };

    for (const { name } of config.versions) {
      const box = graph.getByRole("checkbox", { name, exact: true });
      const wasShown = visible.has(name);
      assert.equal(await box.isChecked(), wasShown);
      await box.setChecked(!wasShown);
      wasShown ? visible.delete(name) : visible.add(name);
      await assertShown();
    }
    await report.picture(`${config.page.replace(/\.html$/, "")}-toggled`);
  });
}

test("the labels of the time axis are whole", async () => {
  for (const config of configs) {
    const { graph } = await report.show(config);
    const cut = await graph.locator(".dygraph-axis-label-y").evaluateAll(
      (labels) => labels.filter((label) => label.scrollWidth > label.clientWidth)
        .map((label) => label.innerText));
    assert.deepEqual(cut, []);
  }
});

test("times are labelled with their unit", async () => {
  const { graph } = await report.show(configs[0]);
  assert.equal(await graph.locator(".dygraph-ylabel").innerText(), "Time:(us)");
});

test("the browser complains of nothing", () => {
  assert.deepEqual(report.complaints, []);
});

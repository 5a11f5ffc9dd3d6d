// Tests of the table of each configuration: order, colours and numbers of its rows.

const assert = require("node:assert/strict");
const fs = require("node:fs");
const { after, before, test } = require("node:test");
const { fileURLToPath } = require("node:url");
const { Report } = require("./browser.js");
const { readConfigs } = require("./expected.js");

const configs = readConfigs();
let report;
before(async () => { report = await Report.open(); });
after(() => report.close());

/// All rows after the column names, with the style of the group that they are in.
const rowsIn = (frame) => frame.locator("tr:has(td)").evaluateAll((rows) =>
  rows.map((row) => {
    const { backgroundColor, opacity } = getComputedStyle(row.parentElement);
    const cells = [...row.cells].map((cell) => cell.innerText.trim());
    return { cells, look: `${backgroundColor} ${opacity}` };
  }));

const lime = "rgb(0, 255, 0) 1";
const faded = "rgba(0, 0, 0, 0) 0.4";
const orange = "rgb(255, 165, 0) 1";

function lookOf(version, versions) {
  const original = versions.findIndex(({ name }) => name === "baseline");
  if (version === original) return faded;
  return original < 0 || version < original ? lime : orange;
}

// The results table has six digits of each time; the page has three decimals.
function assertTime(text, expected, longest) {
  assert.match(text, /^\d+\.\d{3}$/);
  assert.ok(Math.abs(text - expected) <= 0.00051 + longest * 5e-6,
    `${text} is not ${expected}`);
}

function assertSpeedup(text, expected) {
  assert.match(text, /^\d+\.\dx$/);
  assert.ok(Math.abs(parseFloat(text) - expected) <= 0.051,
    `${text} is not ${expected}`);
}

function assertRow([name, count, ...numbers], version, config) {
  assert.equal(name, version.name);
  assert.equal(count, `${config.samples}/${config.samples}`);
  const original = config.versions.find((v) => v.name === "baseline");
  for (const value of ["min", "max", "median", "mean"]) {
    assertTime(numbers.shift(), version[value], version.max);
    const speedup = numbers.shift();
    if (original) assertSpeedup(speedup, original[value] / version[value]);
  }
  assertTime(numbers.shift(), version.stddev, version.max);
  assert.deepEqual(numbers, []);
}

for (const config of configs) {
  test(`${config.title}: rows go from fast to slow, with their numbers`, async () => {
    const { table } = await report.show(config);
    const rows = await rowsIn(table);
    assert.equal(rows.length, config.versions.length);
    rows.forEach(({ cells }, i) => assertRow(cells, config.versions[i], config));
    await report.picture(config.page.replace(/\.html$/, ""));
  });

  test(`${config.title}: colours tell faster, original and slower`, async () => {
    const { table } = await report.show(config);
    const looks = (await rowsIn(table)).map(({ look }) => look);
    const wanted = config.versions.map((_, i) => lookOf(i, config.versions));
    assert.deepEqual(looks, wanted);
  });

  test(`${config.title}: the caption leads to the samples`, async () => {
    const { table } = await report.show(config);
    const [first, last] = config.lines;
    const link = table.getByRole("link");
    assert.equal((await link.innerText()).trim(),
      `(See details (line ${first}-${last}))`);
    const caption = await table.locator("thead").innerText();
    assert.ok(caption.includes(`${config.title} called ${config.samples} times`),
      caption);

    const file = fileURLToPath(await link.evaluate((element) => element.href));
    const rows = fs.readFileSync(file, "utf8").split("\n").slice(first, last + 1);
    assert.ok(rows.every((row) => row.startsWith(`${config.key},`)));
  });
}

test("the browser complains of nothing", () => {
  assert.deepEqual(report.complaints, []);
});

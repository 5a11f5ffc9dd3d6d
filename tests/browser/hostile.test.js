// Tests of the report of a hostile log: nothing runs, nothing is missing.

const assert = require("node:assert/strict");
const fs = require("node:fs");
const path = require("node:path");
const { after, before, test } = require("node:test");
const { Report } = require("./browser.js");
const { folder } = require("./expected.js");

let report;
before(async () => { report = await Report.open(); });
after(() => report.close());

const keyFields = 7;

/// The fields of the log, with each byte as a character.
function readFields() {
  const lines = fs.readFileSync(path.join(folder, ".auto.csv"), "latin1")
    .replace(/\n$/, "").split("\n").slice(1);
  return lines.map((line) => [...line.split(","), ...Array(8).fill("")]);
}

/// The text that a page has to show for these bytes.
const shown = (bytes) => new TextDecoder("utf-8", { ignoreBOM: true })
  .decode(Buffer.from(bytes, "latin1")).replace(/[\x00-\x1f\x7f-\x9f]/g, "\ufffd");

function titleOf([kernel, ...sizes]) {
  const dimension = (start, i) =>
    sizes[i] === "" ? "" : `${start}:${shown(sizes[i])}/${shown(sizes[i + 3])}`;
  return `${shown(kernel)} [ ${dimension("x", 0)}${dimension(", y", 1)}` +
    `${dimension(", z", 2)} ] `;
}

/// Titles and versions in the order of the log.
function readConfigs() {
  const configs = new Map();
  for (const fields of readFields()) {
    const key = fields.slice(0, keyFields);
    const config = configs.get(key.join()) ?? { title: titleOf(key), versions: new Set() };
    configs.set(key.join(), config);
    config.versions.add(shown(fields[keyFields]));
  }
  return [...configs.values()];
}

const configs = readConfigs();
const textsOf = (locator) =>
  locator.evaluateAll((elements) => elements.map((e) => e.textContent));
const sorted = (texts) => [...texts].sort();

// The page has a blank on each side of a name, which is not part of the name.
const bare = (texts) => texts.map((text) => text.slice(1, -1));

/// Follows the link with this number, unless its page is shown already.
async function follow(number) {
  const link = report.index.getByRole("link").nth(number);
  const url = await link.evaluate((element) => element.href);
  if (report.base.url() !== url) {
    await link.evaluate((element) => element.click());
    await report.base.waitForURL(url);
  }
  const [table, graph] = report.base.childFrames();
  return { url, table, graph };
}

const fileOf = (url) => path.relative(folder, decodeURI(new URL(url).pathname));

test("the index shows every name as it is", async () => {
  assert.ok(configs.length > 50);
  const links = await textsOf(report.index.getByRole("link"));
  assert.deepEqual(bare(links), configs.map(({ title }) => title));
});

test("the index is a list of links and nothing else", async () => {
  const tags = await report.index.locator("body *").evaluateAll(
    (elements) => [...new Set(elements.map((element) => element.tagName))]);
  assert.deepEqual(tags, ["B", "UL", "LI", "A"]);
});

test("every link leads to pages of its own, with all versions", async () => {
  const files = new Set();
  for (const [number, { title, versions }] of configs.entries()) {
    const { url, table, graph } = await follow(number);
    for (const frame of [url, table.url(), graph.url()]) {
      assert.match(fileOf(frame), /^html\/[\w$-]+\.html$/, title);
      files.add(fileOf(frame));
    }

    const rows = await textsOf(table.locator("tr:has(td) > th"));
    assert.deepEqual(sorted(rows), sorted(versions), title);
    const caption = await table.locator("thead th").first().textContent();
    assert.ok(caption.includes(`${title}called `), title);

    const boxes = await textsOf(graph.locator("label"));
    assert.deepEqual(sorted(bare(boxes)), sorted(versions), title);
    const drawn = await graph.evaluate(() => [g.numColumns(), g.getLabels().length]);
    assert.deepEqual(drawn, [versions.size + 1, versions.size + 1], title);
  }
  assert.equal(files.size, 3 * configs.length);
});

test("boxes show and hide versions of any name", async () => {
  const number = configs.findIndex(({ versions }) => versions.size > 2);
  const { graph } = await follow(number);
  const boxes = graph.getByRole("checkbox");
  for (let i = 0; i !== configs[number].versions.size; ++i)
    await boxes.nth(i).evaluate((box) => { if (!box.checked) box.click(); });
  const isShown = await graph.evaluate(() => g.visibility());
  assert.deepEqual(new Set(isShown), new Set([true]));
  await report.picture("hostile");
});

test("no file is anywhere else", () => {
  const pages = fs.readdirSync(path.join(folder, "html"), { withFileTypes: true });
  assert.ok(pages.every((page) => page.isFile()));
  assert.equal(pages.length, 3 * configs.length + 1);
  assert.deepEqual(fs.readdirSync(folder).sort(),
    [".auto.csv", "autotune.csv", "html", "main.html"]);
  assert.deepEqual(fs.readdirSync(path.dirname(folder)), [path.basename(folder)]);
});

// A script that a name has made run is among the complaints, too.
test("the browser complains of nothing", () => {
  assert.deepEqual(report.complaints, []);
});

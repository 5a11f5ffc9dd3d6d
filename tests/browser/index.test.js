// Tests of the list of configurations and of the frames around the pages.

const assert = require("node:assert/strict");
const { after, before, test } = require("node:test");
const { Report } = require("./browser.js");
const { readConfigs } = require("./expected.js");

const configs = readConfigs();
let report;
before(async () => { report = await Report.open(); });
after(() => report.close());

const shown = () => report.base.childFrames().map(Report.file);
const pagesOf = ({ page }) =>
  ["_table.html", "_graph.html"].map((end) => page.replace(/\.html$/, end));

test("the window has its title", async () => {
  assert.equal(await report.page.title(), "AUTOTUNE OUTPUT");
});

test("the index lists every configuration in the order of the log", async () => {
  assert.notEqual(configs.length, 0);
  const links = await report.index.getByRole("link").allInnerTexts();
  assert.deepEqual(links.map((text) => text.trim()), configs.map((c) => c.title));
});

test("the first configuration is shown from the start", () => {
  assert.equal(Report.file(report.base), configs[0].page);
  assert.deepEqual(shown(), pagesOf(configs[0]));
});

for (const config of [...configs].reverse())
  test(`a link fills the right frame with ${config.title}`, async () => {
    await report.show(config);
    assert.equal(Report.file(report.base), config.page);
    assert.deepEqual(shown(), pagesOf(config));
    assert.equal(Report.file(report.index), "index.html");
  });

test("the browser complains of nothing", () => {
  assert.deepEqual(report.complaints, []);
});

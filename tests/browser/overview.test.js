// Tests of the page that corvane report writes, in a browser.

const assert = require("node:assert/strict");
const { execFileSync } = require("node:child_process");
const fs = require("node:fs");
const http = require("node:http");
const path = require("node:path");
const { pathToFileURL } = require("node:url");
const { after, before, test } = require("node:test");
const { launchBrowser, listen } = require("./browser.js");
const { ordinary, hostile, hostileNames, large, about } = require("./records.js");

const folder = process.env.CORVANE_REPORT;
const pictures = process.env.CORVANE_SCREENSHOTS;
let browser;
before(async () => { browser = await launchBrowser(); });
after(() => browser.close());

/// Has corvane write the page of a record; returns the page's path. The folder
/// is moved afterwards, and its new name would be another place in a URL.
function makePage(name, record, command) {
  const made = path.join(folder, name), moved = path.join(folder, `${name} #1%20 'ü`);
  record.write(made, command);
  execFileSync(process.env.CORVANE_FILE, ["report", made], { stdio: ["ignore", "inherit", "ignore"] });
  fs.rmSync(moved, { recursive: true, force: true });
  fs.renameSync(made, moved);
  return path.join(moved, "report.html");
}

async function open(file, options = {}) {
  const page = await browser.newPage({ viewport: { width: 1440, height: 900 }, ...options });
  page.complaints = listen(page);
  await page.exposeFunction("ran", (where) => page.complaints.push(`${where} has run`));
  await page.goto(pathToFileURL(file).href);
  return page;
}

const cellsOf = (page, number) =>
  page.locator("tr.config > *").evaluateAll((cells, n) => cells.filter((c) =>
    [...c.parentElement.children].indexOf(c) === n).map((c) => c.innerText.trim()), number);
const openFirst = async (page) => {
  await page.locator(".opener").first().click();
  return page.locator("tr.details").first();
};

const ordinaryPage = makePage("ordinary", ordinary(), ["./solve", "--size", "two words"]);

test("the summary says what ran and what a profile saves", async () => {
  const page = await open(ordinaryPage);
  assert.equal(await page.title(), "Kernel versions of solve");
  const text = await page.locator("#summary").innerText();
  for (const part of ["./solve --size 'two words'", "With the fastest versions the kernels take", "cpu-haswell (Maker)",
    "3.1", "2024-02-29 23:59:58 UTC", "3,115", "4, of which 2 use a variant", "1 variant"])
    assert.ok(text.includes(part), `${part} in ${text}`);
  assert.match(text, /copy \[1024 \/ 64\], 3000 launches, 360\.00 ms: no variant is faster/);
  assert.match(text, /matmul, l0S2: wrong results: argument 2, element 17 is nan instead of 1\.5/);
  assert.deepEqual(page.complaints, []);
  await page.close();
});

test("configurations come by kernel time, and are sorted by any column", async () => {
  const page = await open(ordinaryPage);
  assert.deepEqual(await cellsOf(page, 0), ["matmul", "copy", "copy", "fill"]);
  await page.getByRole("button", { name: "Launches" }).click();
  assert.deepEqual(await cellsOf(page, 2), ["3,000", "100", "10", "5"]);
  await page.getByRole("button", { name: "Launches" }).click();
  assert.deepEqual(await cellsOf(page, 2), ["5", "10", "100", "3,000"]);
  assert.equal(await page.locator("[aria-sort=ascending]").innerText(), "Launches");
  await page.close();
});

test("the filter and the outcome choose configurations", async () => {
  const page = await open(ordinaryPage);
  await page.locator("#filter").fill("copy 2048");
  assert.deepEqual(await cellsOf(page, 1), ["2048"]);
  assert.equal(await page.locator("#count").innerText(), "1 of 4 configurations");
  await page.locator("#filter").fill("");
  await page.locator("#outcome").selectOption("not tuned");
  assert.deepEqual(await cellsOf(page, 0), ["fill"]);
  await page.close();
});

test("a configuration shows all versions, the losers and the refused too", async () => {
  const page = await open(ordinaryPage);
  const details = await openFirst(page);
  const rows = await details.locator("tbody tr").evaluateAll((all) => all.map((row) => ({
    version: row.querySelector(".name").textContent,
    words: row.querySelector("th .words")?.textContent,
    result: row.lastElementChild.innerText, grey: row.classList.contains("grey"), strips: row.querySelectorAll("svg").length })));
  assert.deepEqual(rows.map(({ version }) => version), ["original", "l0S2", "g0S4", "g0S2", "g1S2", "g0S16"]);
  const of = (name) => rows.find(({ version }) => version === name);
  assert.equal(of("g0S4").words, "each work-item does 4 columns");
  assert.equal(of("g0S4").result, "winner");
  assert.equal(of("g0S2").result, "faster");
  assert.equal(of("g1S2").result, "no difference");
  assert.ok(of("g1S2").grey && !of("g0S2").grey);
  assert.match(of("g0S16").result, /refused\s+does not take these sizes: 1022 is not a multiple of 256/);
  assert.match(of("l0S2").result, /^wrong results\s+argument 2, element 17/);
  assert.deepEqual(rows.map(({ strips }) => strips), [1, 1, 1, 1, 1, 0]);
  assert.equal(await details.locator("svg.strong").count(), 1);
  await page.close();
});

test("every time is drawn and listed on demand", async () => {
  const page = await open(ordinaryPage);
  const details = await openFirst(page);
  assert.equal(await details.locator("svg.plot").count(), 0);
  await details.getByRole("button", { name: "Show every time" }).click();
  const dots = () => details.locator("svg.plot path").evaluateAll((paths) =>
    paths.map((p) => p.getAttribute("d").split("M").length - 1));
  assert.deepEqual(await dots(), [7, 1, 7, 7, 7]);
  await details.getByRole("checkbox", { name: "l0S2" }).uncheck();
  assert.deepEqual(await dots(), [7, 7, 7, 7]);
  await details.getByText("As numbers").click();
  const numbers = await details.locator("pre").innerText();
  assert.ok(numbers.includes(`original: ${about(8000).join(", ")}`), numbers);
  await details.getByRole("button", { name: "Hide the times" }).click();
  assert.equal(await details.locator("svg.plot").count(), 0);
  await page.close();
});

test("the keyboard reaches and opens everything", async () => {
  const page = await open(ordinaryPage);
  const focused = () => page.evaluate(() => document.activeElement.textContent || document.activeElement.id);
  const reached = [];
  for (let i = 0; i !== 14; ++i) {
    await page.keyboard.press("Tab");
    reached.push(await focused());
  }
  for (const name of ["filter", "Kernel time", "matmul", "fill"]) assert.ok(reached.includes(name), `${name} in ${reached}`);
  await page.locator(".opener").first().focus();
  await page.keyboard.press("Enter");
  assert.equal(await page.locator("tr.details").first().isVisible(), true);
  await page.keyboard.press("Space");
  assert.equal(await page.locator("tr.details").first().isVisible(), false);
  await page.close();
});

for (const width of [1440, 820, 390])
  for (const colorScheme of ["light", "dark"])
    test(`it fits into ${width} pixels, ${colorScheme}`, async () => {
      const page = await open(ordinaryPage, { viewport: { width, height: 900 }, colorScheme });
      const details = await openFirst(page);
      await details.getByRole("button", { name: "Show every time" }).click();
      const [beyond, paper] = await page.evaluate(() => [document.documentElement.scrollWidth - window.innerWidth,
        getComputedStyle(document.body).backgroundColor]);
      assert.ok(beyond <= 0, `${beyond} pixels beyond the edge`);
      assert.equal(paper, colorScheme === "dark" ? "rgb(20, 23, 27)" : "rgb(255, 255, 255)");
      if (pictures) await page.screenshot({ path: path.join(pictures, `overview-${width}-${colorScheme}.png`), fullPage: true });
      await page.close();
    });

test("paper gets the tables in black on white, without the controls", async () => {
  const page = await open(ordinaryPage, { colorScheme: "dark" });
  await page.emulateMedia({ media: "print" });
  assert.equal(await page.locator(".controls").isVisible(), false);
  assert.equal(await page.evaluate(() => getComputedStyle(document.body).color), "rgb(0, 0, 0)");
  assert.equal(await page.locator("tr.config").first().isVisible(), true);
  await page.close();
});

test("it opens over http as well", async () => {
  const server = http.createServer((request, response) => {
    response.setHeader("Content-Type", "text/html");
    response.end(fs.readFileSync(ordinaryPage));
  }).listen(0, "127.0.0.1");
  await new Promise((listening) => { server.once("listening", listening); });
  const page = await browser.newPage();
  const asked = [];
  page.on("request", (request) => asked.push(request.url()));
  const url = `http://127.0.0.1:${server.address().port}/any/where.html`;
  await page.goto(url);
  assert.equal(await page.locator("tr.config").count(), 4);
  assert.deepEqual(asked, [url]);
  await page.close();
  server.close();
});

test("hostile names are text and nothing else", async () => {
  const page = await open(makePage("hostile", hostile(), hostileNames.filter((name) => !name.includes("\0"))));
  const shown = (name) => name.replace(/[\u0000-\u001f\u202e]/g, "\ufffd");
  const kernels = await page.locator("tr.config .opener").evaluateAll((all) => all.map((b) => b.textContent));
  assert.deepEqual([...kernels].sort(), hostileNames.map(shown).sort());
  const clickAll = (buttons) => buttons.evaluateAll((all) => all.forEach((button) => button.click()));
  await clickAll(page.locator("tr.config .opener"));
  await clickAll(page.getByRole("button", { name: "Show every time" }));
  assert.equal(await page.locator("svg.plot").count(), hostileNames.length);
  assert.equal(await page.locator("script").count(), 2);
  assert.equal(await page.locator("img, iframe, plaintext, [onerror], [onmouseover], a").count(), 0);
  assert.ok(await page.evaluate(() => document.documentElement.scrollWidth - window.innerWidth) <= 0);
  assert.deepEqual(page.complaints, []);
  await page.close();
});

test("very many configurations are all there", async (t) => {
  const file = makePage("large", large());
  assert.ok(fs.statSync(file).size < 15e6, "smaller than 15 MB");
  const begin = performance.now();
  const page = await open(file);
  t.diagnostic(`opened in ${Math.round(performance.now() - begin)} ms, ${fs.statSync(file).size} bytes`);
  assert.equal(await page.locator("#count").innerText(), "2,000 of 2,000 configurations");
  assert.equal(await page.locator("tr.config").count(), 200);
  await page.locator("#filter").fill("1024 / 64");
  assert.equal(await page.locator("tr.config").count(), 1);
  await page.locator("#filter").fill("");
  await page.getByRole("button", { name: "Show all 2,000" }).click();
  assert.equal(await page.locator("tr.config").count(), 2000);
  assert.deepEqual(page.complaints, []);
  await page.close();
});

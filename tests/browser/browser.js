// Opens the report in a browser, and collects the browser's complaints.

const fs = require("node:fs");
const path = require("node:path");
const { pathToFileURL } = require("node:url");
const { chromium } = require("playwright-core");
const { folder } = require("./expected.js");

const flags = [
  "--disable-gpu", "--disable-quic", "--no-first-run",
  "--disable-background-networking", "--disable-component-update",
  "--disable-sync",
];

function findChromium() {
  const folders = process.env.PATH.split(path.delimiter);
  const files = folders.map((name) => path.join(name, "chromium"));
  const found = files.find((file) => fs.existsSync(file));
  if (!found) throw new Error("Chromium is missing. Debian: apt-get install chromium");
  return found;
}

/// Collects what would be red in the developer tools, and any request that
/// leaves this machine.
function listen(page) {
  const complaints = [];
  page.on("console", (message) => {
    if (["error", "warning"].includes(message.type()))
      complaints.push(`console: ${message.text()}`);
  });
  page.on("pageerror", (error) => complaints.push(`script: ${error.message}`));
  page.on("requestfailed", (request) =>
    complaints.push(`${request.url()}: ${request.failure().errorText}`));
  page.on("dialog", (dialog) => {
    complaints.push(`dialog: ${dialog.message()}`);
    dialog.dismiss();
  });
  page.on("request", (request) => {
    if (!request.url().startsWith("file://"))
      complaints.push(`${request.url()} was asked for`);
  });
  return complaints;
}

/// A browser with an empty profile.
const launchBrowser = () => chromium.launch(
  { executablePath: findChromium(), chromiumSandbox: false, args: flags });

class Report {
  /// Starts a browser with an empty profile and opens the report in it.
  static async open() {
    const report = new Report();
    report.browser = await launchBrowser();
    report.page = await report.browser.newPage(
      { viewport: { width: 1440, height: 900 } });
    report.complaints = listen(report.page);
    // A script from a hostile log calls this, in whatever frame it runs.
    await report.page.exposeFunction("ran", (where) =>
      report.complaints.push(`${where} has run`));
    await report.page.goto(pathToFileURL(path.join(folder, "main.html")).href);
    return report;
  }

  get index() { return this.page.frame({ name: "indexfrm" }); }
  get base() { return this.page.frame({ name: "basefrm" }); }

  /// The file that a frame shows.
  static file(frame) { return decodeURIComponent(path.basename(frame.url())); }

  /// Follows the link to a configuration, unless it is shown already.
  async show(config) {
    const url = pathToFileURL(path.join(folder, "html", config.page)).href;
    if (this.base.url() !== url) {
      await this.index.getByRole("link", { name: config.title, exact: true }).click();
      await this.base.waitForURL(url);
    }
    const [table, graph] = this.base.childFrames();
    return { table, graph };
  }

  async picture(name) {
    const into = process.env.CORVANE_SCREENSHOTS;
    if (into) await this.page.screenshot({ path: path.join(into, `${name}.png`) });
  }

  async close() { await this.browser.close(); }
}

module.exports = { Report, launchBrowser, listen };

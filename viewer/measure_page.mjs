// measure_page.mjs NODE_MODULES PAGE
// Opens a page of takes in Chromium, plays it, and tells how long it took to open (until the second
// frame was drawn) and what a frame costs of script; the drawing itself is not in that.
import { statSync } from 'node:fs';
import { join, resolve } from 'node:path';
import { pathToFileURL } from 'node:url';

const [modules, page] = process.argv.slice(2).map(path => resolve(path));
const { default: puppeteer } =
    await import(pathToFileURL(join(modules, 'puppeteer-core/lib/esm/puppeteer/puppeteer-core.js')));
const browser = await puppeteer.launch({
    executablePath: '/usr/bin/chromium',
    args: ['--no-sandbox', '--use-angle=swiftshader', '--enable-unsafe-swiftshader', '--disable-dev-shm-usage'],
    protocolTimeout: 600000,
});
const tab = await browser.newPage();
await tab.goto('about:blank');
const begun = performance.now();
await tab.goto(pathToFileURL(page).href, { waitUntil: 'load', timeout: 600000 });
await tab.waitForFunction(() => lumiset.work.frames > 1, { timeout: 600000, polling: 5 });
const opened = (performance.now() - begun) / 1000;
await tab.keyboard.press('Space');
const costs = await tab.evaluate(async () => {
    const found = [];
    for (let i = 0; i < 600; ++i) {
        await new Promise(done => requestAnimationFrame(done));
        found.push(lumiset.work.last);
    }
    const seconds = lumiset.seconds;
    return { costs: found.sort((a, b) => a - b), seconds, cells: lumiset.cells };
});
await browser.close();
const at = part => costs.costs[Math.floor(part * (costs.costs.length - 1))].toFixed(2);
console.log(`${(statSync(page).size / costs.cells).toFixed(2)} bytes a joint and frame with the library (${costs.cells} of them)`);
console.log(`opened in ${opened.toFixed(2)} s`);
console.log(`script of a frame: ${at(0.5)} ms, 19 of 20 below ${at(0.95)} ms, at most ${at(1)} ms`);

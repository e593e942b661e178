// picture.mjs NODE_MODULES PAGE MOMENT PICTURE
// What a page of takes looks like in Chromium at a moment, as `#t=12.5` says it.
import { join, resolve } from 'node:path';
import { pathToFileURL } from 'node:url';

const [modules, page, moment, picture] = process.argv.slice(2);
const { default: puppeteer } = await import(
    pathToFileURL(join(resolve(modules), 'puppeteer-core/lib/esm/puppeteer/puppeteer-core.js')));
const browser = await puppeteer.launch({
    executablePath: '/usr/bin/chromium',
    args: ['--no-sandbox', '--use-angle=swiftshader', '--enable-unsafe-swiftshader', '--disable-dev-shm-usage'],
    defaultViewport: { width: 960, height: 640 },
});
const tab = await browser.newPage();
await tab.emulateMediaFeatures([{ name: 'prefers-color-scheme', value: 'dark' }]);
await tab.goto(pathToFileURL(resolve(page)).href + moment);
await tab.waitForFunction(() => document.querySelector('.legend span').textContent !== '');
await tab.evaluate(() => new Promise(done => requestIdleCallback(done)));
await tab.screenshot({ path: picture });
await browser.close();

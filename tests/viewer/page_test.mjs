// page_test.mjs NODE_MODULES COMMAND CAPTURES FOLDER
// Pages of recorded scenes in a real browser. CAPTURES is the folder of our own captures; beside them
// those of the system are recorded. All that is made lies in FOLDER.
import { execFileSync } from 'node:child_process';
import { existsSync, mkdirSync, readFileSync } from 'node:fs';
import { basename, join } from 'node:path';
import { pathToFileURL } from 'node:url';

const [modules, command, captures, folder] = process.argv.slice(2);
const SKIPPED = 77;
const browserFile = ['/usr/bin/chromium', process.env.CHROMIUM].find(file => file && existsSync(file));
if (!browserFile || !existsSync(join(modules, 'puppeteer-core'))) {
    console.log('Skipped: the page is tried in a browser where chromium and npm are installed');
    process.exit(SKIPPED);
}
const { default: puppeteer } =
    await import(pathToFileURL(join(modules, 'puppeteer-core/lib/esm/puppeteer/puppeteer-core.js')));

const CAPTURES = [
    ['/usr/share/assimp/models/BVH/01_01.bvh'],
    ['/usr/share/assimp/models/BVH/01_03.bvh'],
    ['/usr/share/assimp/models/BVH/Boxing_Toes.bvh', '--scale', '0.01'],
    ...['two_roots', 'six_channels', 'other_orders', 'hinges', 'uneven_rate'].map(name =>
        [join(captures, `${name}.bvh`), '--scale', '1']),
];
const TIMES = 20;
const METRES = 1e-4;  // that a place may be off
const LOOSE = 1e-3;  // metres that a bone may change by, for the rounding of turns
const WAIT = { timeout: 120000, polling: 50 };

let failures = 0;
function expect(isTrue, text) {
    if (isTrue) return;
    ++failures;
    console.log(`FAILED: ${text}`);
}

const lumiset = (...words) => execFileSync(command, words, { encoding: 'utf8', maxBuffer: 1 << 28 });

// Records captures into one scene. Gives the files of the scene and of its page.
function makePage(name, ...words) {
    const [scene, page] = [join(folder, `${name}.scene`), join(folder, `${name}.html`)];
    lumiset('record', ...words, '-o', scene);
    const told = JSON.parse(lumiset('view', scene, '-o', page, '--json'));
    return { scene, page, told };
}

// Where `sample` finds each node, by the host's name, at some frames of a take. All are asked for, so
// that both sides count a time alike: a tick begins at many of them.
function sampled(scene, { startSeconds, frameSeconds, frames }) {
    const end = startSeconds + (frames - 0.5) * frameSeconds;
    const [head, ...rows] = lumiset('sample', scene, '--times', `${startSeconds}:${end}:${frameSeconds}`)
        .trim().split('\n').map(line => line.split(','));
    const column = name => head.indexOf(name);
    const moments = new Map();
    for (const row of rows) {
        const seconds = row[column('seconds')];
        if (!moments.has(seconds)) moments.set(seconds, new Map());
        moments.get(seconds).set(row[column('node')], ['x', 'y', 'z'].map(axis => Number(row[column(axis)])));
    }
    const stride = Math.max(Math.floor((frames - 1) / (TIMES - 1)), 1);
    return [...moments].filter((_, frame) => frame % stride === 0).slice(0, TIMES)
        .map(([seconds, places]) => ({ seconds: Number(seconds), places }));
}

async function open(browser, page, hash = '') {
    const tab = await browser.newPage();
    tab.complaints = [];
    tab.on('console', message => {
        if (['error', 'warn'].includes(message.type())) tab.complaints.push(message.text());
    });
    tab.on('pageerror', error => tab.complaints.push(String(error)));
    tab.on('request', request => {
        if (!/^(file|data|blob):/.test(request.url())) tab.complaints.push(`it asks for ${request.url()}`);
    });
    await tab.goto(pathToFileURL(page).href + hash, { waitUntil: 'load', timeout: 120000 });
    await tab.waitForFunction(() => window.lumiset?.work.frames > 1, WAIT);
    return tab;
}

const shown = (tab, read) => tab.evaluate(read);
const nextFrames = async tab => {
    const { frames } = await shown(tab, () => lumiset.work);
    await tab.waitForFunction(count => lumiset.work.frames > count + 1, WAIT, frames);
};

async function goTo(tab, seconds) {
    await tab.evaluate(at => { location.hash = `#t=${at}`; }, seconds);
    await tab.waitForFunction(at => Math.abs(lumiset.seconds - at) < 1e-3, WAIT, seconds);
    await nextFrames(tab);
}

const placeBeside = ({ world: child }, { world: parent }) => {
    const away = [12, 13, 14].map(i => child[i] - parent[i]);
    return [0, 4, 8].map(axis => away.reduce((sum, part, i) => sum + part * parent[axis + i], 0));
};
const distance = (a, b) => Math.hypot(...a.map((part, i) => part - b[i]));

// The nodes stand where `sample` finds them, and turn so that bones keep what hangs on them.
async function comparePlaces(tab, { scene, told: { takes: [take] } }, isStiff) {
    let furthest = 0, loosest = 0, compared = 0, first = null;
    for (const { seconds, places } of sampled(scene, take)) {
        await goTo(tab, seconds);
        const worlds = await shown(tab, () => lumiset.worlds);
        first ??= worlds;
        worlds.forEach((node, n) => {
            const place = places.get(`${take.name}_${node.name}`);
            if (place) ++compared;
            if (place) furthest = Math.max(furthest, distance(place, node.world.slice(12, 15)));
            if (!(worlds[node.parent]?.parent >= 0)) return;
            const [now, then] = [worlds, first].map(all => placeBeside(all[n], all[node.parent]));
            loosest = Math.max(loosest, distance(now, then));
        });
    }
    expect(compared === TIMES * first.length, `${scene}: ${compared} places compared`);
    expect(furthest < METRES, `${scene}: ${furthest} m from where sample finds it`);
    if (isStiff) expect(loosest < LOOSE, `${scene}: bones change by ${loosest} m`);
    console.log(`${basename(scene)}: ${compared} places, ${furthest.toExponential(1)} m off at most; bones change by ${loosest.toExponential(1)} m`);
}

// How many points in the middle of a picture of the page have the colours of bones: orange or blue.
async function bonePoints(tab) {
    const picture = await tab.screenshot({ encoding: 'base64' });
    return tab.evaluate(async data => {
        const image = await createImageBitmap(await (await fetch(`data:image/png;base64,${data}`)).blob());
        const pen = new OffscreenCanvas(image.width, image.height).getContext('2d');
        pen.drawImage(image, 0, 0);
        const { data: points } = pen.getImageData(image.width / 4, 0, image.width / 2, image.height * 0.7);
        let count = 0;
        for (let i = 0; i < points.length; i += 4) {
            const [red, green, blue] = points.subarray(i, i + 3);
            if (red - blue > 80 && green > blue || blue - red > 80 && green > red) ++count;
        }
        return count;
    }, picture);
}

async function tryHands(browser, { page }) {
    const tab = await open(browser, page, '#t=1.5');
    expect(Math.abs(await shown(tab, () => lumiset.seconds) - 1.5) < 1e-3, '#t=1.5 opens there');
    const points = await bonePoints(tab);
    expect(points > 600, `a figure is seen: ${points} points of its colours`);
    await tab.screenshot({ path: join(folder, 'figure.png') });

    const frame = () => shown(tab, () => lumiset.frame);
    const press = async (key, isMeant) => {
        await tab.keyboard.press(key);
        await nextFrames(tab);
        expect(isMeant(await frame()), `${key} leads to frame ${await frame()}`);
    };
    await press('ArrowRight', at => at === 181);
    await press('ArrowLeft', at => at === 180);
    await press('Home', at => at === 0);
    await press('End', at => at === 2751);
    await press('Home', at => at === 0);
    await tab.keyboard.press('j');
    expect(await shown(tab, () => lumiset.joint !== lumiset.worlds[0].name), 'j chooses the next joint');

    // A machine that is busy is late, but the motion is as late as the clock.
    await tab.keyboard.press('Space');
    await tab.waitForFunction(() => lumiset.isPlaying, WAIT);
    const rate = await tab.evaluate(async () => {
        const now = () => new Promise(done => requestAnimationFrame(time => setTimeout(() => done([time, lumiset.seconds]))));
        const [time, seconds] = await now();
        await new Promise(done => setTimeout(done, 3000));
        const [later, then] = await now();
        return (then - seconds) / ((later - time) / 1000);
    });
    expect(Math.abs(rate - 1) < 0.15, `it plays at ${rate} of the clock's speed`);
    await tab.keyboard.press('Space');
    await tab.waitForFunction(() => !lumiset.isPlaying, WAIT);
    const address = await shown(tab, () => [location.hash, lumiset.seconds]);
    expect(Math.abs(Number(address[0].slice(3)) - address[1]) < 1e-3, `the address tells ${address}`);

    const plot = await (await tab.$('#plot')).boundingBox();
    await tab.mouse.click(plot.x + plot.width * 0.75, plot.y + 20);
    await nextFrames(tab);
    expect(Math.abs(await frame() / 2751 - 0.74) < 0.03, `a click on the curves leads to frame ${await frame()}`);
    expect(tab.complaints.length === 0, `no complaint: ${tab.complaints}`);
    await tab.close();
}

// A text in the page is a text, whatever it holds.
async function tryTakes(browser) {
    const name = '</script><b>"&amp;\' two';
    const made = makePage('two_takes', CAPTURES[3][0], '--scale', '1', '--take', name);
    lumiset('record', CAPTURES[6][0], '--scale', '1', '--into', made.scene, '-o', made.scene);
    const page = join(folder, 'two_takes.html');
    lumiset('view', made.scene, '-o', page);
    const tab = await open(browser, page);
    const names = await tab.$$eval('#take option', options => options.map(option => option.text));
    expect(names.length === 2 && names.includes(name) && names.includes('hinges'), `takes are ${names}`);
    const before = await shown(tab, () => [lumiset.take, lumiset.worlds.length]);
    await tab.select('#take', '1');
    await nextFrames(tab);
    const after = await shown(tab, () => [lumiset.take, lumiset.worlds.length]);
    expect(before[0] !== after[0] && before[1] !== after[1], `the other take is shown: ${before}, ${after}`);
    expect(tab.complaints.length === 0, `no complaint: ${tab.complaints}`);
    await tab.close();
}

mkdirSync(folder, { recursive: true });
const browser = await puppeteer.launch({
    executablePath: browserFile,
    args: ['--no-sandbox', '--use-angle=swiftshader', '--enable-unsafe-swiftshader', '--disable-dev-shm-usage'],
    defaultViewport: { width: 960, height: 720 },
    protocolTimeout: 300000,
});
try {
    for (const [capture, ...words] of CAPTURES) {
        const name = basename(capture, '.bvh');
        const made = makePage(name, capture, ...words);
        const tab = await open(browser, made.page);
        await comparePlaces(tab, made, name !== 'six_channels');
        expect(tab.complaints.length === 0, `${name}: no complaint: ${tab.complaints}`);
        await tab.close();
        if (capture === CAPTURES[0][0]) await tryHands(browser, made);
    }
    await tryTakes(browser);
} finally {
    await browser.close();
}
console.log(failures === 0 ? 'All is as it is meant to be' : `${failures} failed`);
process.exit(failures === 0 ? 0 : 1);

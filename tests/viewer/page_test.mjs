// page_test.mjs NODE_MODULES COMMAND CAPTURES FOLDER
// Pages of recorded scenes in a real browser. CAPTURES is the folder of our own captures; beside them
// those of the system are recorded. All that is made lies in FOLDER.
import { execFile } from 'node:child_process';
import { existsSync, mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { basename, join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { promisify } from 'node:util';

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
const WAIT = { timeout: 120000, polling: 'raf' };

let failures = 0;
function expect(isTrue, text) {
    if (isTrue) return;
    ++failures;
    console.log(`FAILED: ${text}`);
}

const run = promisify(execFile);
const lumiset = async (...words) => (await run(command, words, { maxBuffer: 1 << 28 })).stdout;

// Records a capture, and gives what its page is compared with.
async function makePage([capture, ...words]) {
    const name = basename(capture, '.bvh');
    const [scene, page] = [join(folder, `${name}.scene`), join(folder, `${name}.html`)];
    await lumiset('record', capture, ...words, '-o', scene);
    const { takes: [take] } = JSON.parse(await lumiset('view', scene, '-o', page, '--json'));
    return { name, scene, page, take, samples: await sampled(scene, take) };
}

// Where `sample` finds each node, by the host's name, at some frames of a take. All are asked for, so
// that both sides count a time alike: a tick begins at many of them.
async function sampled(scene, { startSeconds, frameSeconds, frames }) {
    const end = startSeconds + (frames - 0.5) * frameSeconds;
    const [head, ...rows] = (await lumiset('sample', scene, '--times', `${startSeconds}:${end}:${frameSeconds}`))
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

// Gives the tab. What it complains of is a failure, once it is closed.
async function open(browser, page, hash = '', prepare = () => {}) {
    const tab = await browser.newPage();
    tab.complaints = [];
    tab.on('console', message => {
        if (['error', 'warn'].includes(message.type())) tab.complaints.push(message.text());
    });
    tab.on('pageerror', error => tab.complaints.push(String(error)));
    tab.on('request', request => {
        if (!/^(file|data|blob):/.test(request.url())) tab.complaints.push(`it asks for ${request.url()}`);
    });
    await tab.evaluateOnNewDocument(prepare);
    await tab.goto(pathToFileURL(page).href + hash, { waitUntil: 'load', timeout: 120000 });
    await tab.waitForFunction(() => window.lumiset?.work.frames > 1, WAIT);
    return tab;
}

async function close(tab, name) {
    expect(tab.complaints.length === 0, `${name}: no complaint: ${tab.complaints}`);
    await tab.close();
}

const shown = (tab, read) => tab.evaluate(read);
const settle = tab => tab.evaluate(() =>
    new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done))));

async function goTo(tab, words) {
    await tab.evaluate(hash => new Promise(done => {
        window.addEventListener('hashchange', done, { once: true });
        location.hash = hash;
    }), words);
    await settle(tab);
}

const placeBeside = ({ world: child }, { world: parent }) => {
    const away = [12, 13, 14].map(i => child[i] - parent[i]);
    return [0, 4, 8].map(axis => away.reduce((sum, part, i) => sum + part * parent[axis + i], 0));
};
const distance = (a, b) => Math.hypot(...a.map((part, i) => part - b[i]));

// How many nodes but cameras are beside the picture.
const unseen = () => {
    const { clientWidth: width, clientHeight: height } = document.getElementById('stage');
    const { spots, worlds } = lumiset;
    return worlds.filter(({ kind }, node) => {
        const [x, y] = spots[node];
        return kind !== 'camera' && !(x > 0 && x < width && y > 0 && y < height);
    }).length;
};

// The nodes stand where `sample` finds them, all in the picture, and turn so that bones keep what
// hangs on them.
async function comparePlaces(tab, { name, take, samples }) {
    let furthest = 0, loosest = 0, compared = 0, outside = 0, first = null;
    for (const { seconds, places } of samples) {
        await goTo(tab, `#t=${seconds + 1e-9}`);
        const worlds = await shown(tab, () => lumiset.worlds);
        outside += await shown(tab, unseen);
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
    expect(compared === TIMES * first.length, `${name}: ${compared} places compared`);
    expect(outside === 0, `${name}: ${outside} places are beside the picture`);
    expect(furthest < METRES, `${name}: ${furthest} m from where sample finds it`);
    if (name !== 'six_channels') expect(loosest < LOOSE, `${name}: bones change by ${loosest} m`);
    console.log(`${name}: ${compared} places, ${furthest.toExponential(1)} m off at most; bones change by ${loosest.toExponential(1)} m`);
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

const frameOf = tab => shown(tab, () => lumiset.frame);

// Whatever stands behind `#t=`, the page shows a frame of the take.
async function tryAddresses(tab) {
    const rows = [['#t=1.5', 180], ['#t=abc', 180], ['#t=1e999', 180], ['#t=', 180], ['#nothing', 180],
        ['#t=12.5&take=nobody', 1500], ['#t=1e9', 2751], ['#t=-5', 0], ['#t=0.00417', 0.5]];
    for (const [words, meant] of rows) {
        await goTo(tab, words);
        expect(Math.abs(await frameOf(tab) - meant) < 0.01, `${words} leads to frame ${await frameOf(tab)}`);
    }
}

async function tryKeys(tab) {
    const rows = [['ArrowRight', 1], ['ArrowLeft', 0], ['ArrowLeft', 0], ['End', 2751], ['ArrowRight', 2751], ['Home', 0]];
    for (const [key, meant] of rows) {
        await tab.keyboard.press(key);
        expect(await frameOf(tab) === meant, `${key} leads to frame ${await frameOf(tab)}`);
    }
    const joint = () => shown(tab, () => [lumiset.joint, lumiset.worlds.findIndex(({ name }) => name === lumiset.joint)]);
    const [name, number] = await joint();
    await tab.keyboard.press('j');
    expect((await joint())[1] === number + 1, 'j chooses the next joint');
    await tab.keyboard.down('Shift');
    await tab.keyboard.press('J');
    await tab.keyboard.up('Shift');
    expect((await joint())[0] === name, 'J chooses the one before');
    const keysShow = () => tab.$eval('#keys', keys => keys.checkVisibility());
    for (const [key, meant] of [['?', true], ['Escape', false]]) {
        await tab.keyboard.press(key);
        expect(await keysShow() === meant, `${key}: the keys show: ${!meant}`);
    }
}

// The clock's speed times what is chosen: time is read in the frame that it is shown in.
async function tryPlaying(tab) {
    for (const speed of [1, 2]) {
        if (speed > 1) await tab.keyboard.press('+');
        await tab.keyboard.press('Space');
        const rate = await tab.evaluate(async () => {
            const now = () => new Promise(done =>
                setTimeout(() => requestAnimationFrame(time => done([time / 1000, lumiset.seconds])), 200));
            const [[time, seconds], [later, then]] = [await now(), await now()];
            return (then - seconds) / (later - time);
        });
        expect(Math.abs(rate - speed) < 1e-3, `it plays at ${rate} and not ${speed} times the clock's speed`);
        await tab.keyboard.press('Space');
    }
    await tab.waitForFunction(() => Math.abs(Number(location.hash.slice(3)) - lumiset.seconds) < 1e-3, WAIT);
}

async function tryMouse(tab) {
    const plot = await (await tab.$('#plot')).boundingBox();
    await tab.mouse.click(plot.x + plot.width * 0.75, plot.y + 20);
    expect(Math.abs(await frameOf(tab) / 2751 - 0.74) < 0.03, `a click on the curves leads to frame ${await frameOf(tab)}`);

    const stage = await (await tab.$('#stage')).boundingBox();
    const spotOf = async name => (await tab.evaluate(one =>
        lumiset.spots[lumiset.worlds.findIndex(node => node.name === one)], name)).map((at, i) => at + (i ? stage.y : stage.x));
    const name = () => tab.$eval('#name', one => (getComputedStyle(one).visibility === 'visible' ? one.textContent : ''));
    for (const [joint, act] of [['LeftHand', spot => tab.mouse.click(...spot)], ['Head', spot => tab.touchscreen.tap(...spot)]]) {
        await act(await spotOf(joint));
        await settle(tab);
        expect([await name(), await shown(tab, () => lumiset.joint)].every(one => one.startsWith(joint.slice(0, 4))),
            `a hand on ${joint} names ${await name()} and chooses ${await shown(tab, () => lumiset.joint)}`);
    }
    await tab.keyboard.press('f');
    await goTo(tab, '#t=3');
    const chosen = await spotOf(await shown(tab, () => lumiset.joint));
    const off = distance(chosen, [stage.x + stage.width / 2, stage.y + stage.height / 2]);
    expect(off < 1, `the joint that is followed is ${off} pixels from the middle`);
    await tab.mouse.move(...chosen);
    await tab.mouse.down();
    await tab.mouse.move(chosen[0] + 90, chosen[1], { steps: 3 });
    await tab.mouse.up();
    await settle(tab);
    expect(distance(await spotOf('LeftFoot'), await spotOf('RightFoot')) > 1, 'both feet are seen');
    const before = await spotOf('LeftFoot');
    await tab.keyboard.press('r');
    await settle(tab);
    expect(distance(before, await spotOf('LeftFoot')) > 5, 'the whole motion is in view again');
    expect(await tab.$eval('#follow', button => button.ariaPressed) === 'false', 'and nothing is followed');
}

// Nothing sticks out of a phone's edge.
async function tryPhone(tab) {
    for (const [width, height] of [[360, 640], [640, 360]]) {
        await tab.setViewport({ width, height });
        await settle(tab);
        const out = await shown(tab, () => [...document.querySelectorAll('body *')].filter(one => {
            const { width, right, bottom } = one.getBoundingClientRect();
            return width > 1 && (right > innerWidth + 1 || bottom > innerHeight + 1);
        }).map(one => one.id || one.outerHTML.slice(0, 40)));
        expect(out.length === 0, `at ${width} by ${height} these stick out: ${out}`);
    }
}

async function tryHands(tab) {
    await tab.setViewport({ width: 960, height: 720, hasTouch: true });
    await tryAddresses(tab);
    await goTo(tab, '#t=1.5');
    const points = await bonePoints(tab);
    expect(points > 600, `a figure is seen: ${points} points of its colours`);
    await tab.keyboard.press('Home');
    await tryKeys(tab);
    await tryPlaying(tab);
    await tryMouse(tab);
    await tryPhone(tab);
}

// A text in the page is a text, whatever it holds.
async function tryTakes(browser) {
    const name = '</script><!--"&amp;\' \u{1F3C3} two';
    const [scene, page] = ['scene', 'html'].map(ending => join(folder, `two takes.${ending}`));
    await lumiset('record', CAPTURES[3][0], '--scale', '1', '--take', name, '-o', scene);
    await lumiset('record', CAPTURES[6][0], '--scale', '1', '--into', scene, '-o', scene);
    await lumiset('view', scene, '-o', page);
    const tab = await open(browser, page, '#t=0.5&take=hinges');
    const names = await tab.$$eval('#take option', options => options.map(option => option.text));
    expect(names.length === 2 && names.includes(name) && names.includes('hinges'), `takes are ${names}`);
    const [take, seconds] = await shown(tab, () => [lumiset.take, lumiset.seconds]);
    expect(take === 'hinges' && Math.abs(seconds - 0.5) < 1e-3, `it opens at ${seconds} s of ${take}`);
    await tab.select('#take', `${names.indexOf(name)}`);
    expect(await shown(tab, () => lumiset.take) === name, 'the other take is shown');
    await tab.waitForFunction(meant => decodeURIComponent(location.hash) === meant, WAIT, `#t=0&take=${name}`);
    await close(tab, 'two takes');
}

// Pages that somebody else makes, of the form that viewer/README.md tells, in a browser that decodes
// base64 the old way: two nodes with the axes of `frames`, each stretched, sheared or mirrored.
const ODD_FRAMES = [
    [[1, 0, 0, 0, 1, 0, 0, 0, 1], [2, 0, 0, 0, 0.5, 0, 0, 0, 1]],
    [[0, 1, 0, -1, 0, 0, 0, 0, 1], [0, 2, 0, 0, 1, 1, 0, 0, -2]],
];
const LONGEST = [1, 2];

function oddPage(viewer, frames) {
    const floats = numbers => Buffer.from(new Float32Array(numbers).buffer);
    const parts = frames.flatMap(nodes => nodes.flatMap((axes, n) => axes.map(part => Math.round(part / LONGEST[n] * 32767))));
    const chunk = Buffer.concat([floats(LONGEST), floats(frames.flatMap((_, f) => [f, 1, 0, f, 2, 0])),
        Buffer.from(new Int16Array(parts).buffer)]).toString('base64');
    const nodes = ['Hips', 'line\nbreak'].map((name, n) => ({ name, parent: n - 1, kind: 'joint', vertices: 0 }));
    const told = { form: 1, title: 'odd', takes: [{ name: 'odd', startSeconds: 10, frameSeconds: 1,
        frames: frames.length, least: [0, 0, 0], most: [1, 2, 0], nodes }] };
    return viewer.replace('<!-- takes -->', () =>
        `<template data-take="0" data-frames="${frames.length}" data-form="axes"><!--${chunk}--></template>
         <template data-take="0" data-shapes><!----></template>
         <script type="application/json" id="takes">${JSON.stringify(told)}</script>`);
}

async function tryOddPages(browser) {
    const viewer = readFileSync(join(command, '../viewer/page.html'), 'utf8');
    const page = join(folder, 'odd.html');
    writeFileSync(page, oddPage(viewer, ODD_FRAMES));
    const tab = await open(browser, page, '#t=10.5', () => { delete Uint8Array.fromBase64; });
    const axesAt = async words => {
        await goTo(tab, words);
        return (await shown(tab, () => lumiset.worlds)).map(({ world }) => [0, 1, 2, 4, 5, 6, 8, 9, 10].map(i => world[i]));
    };
    for (const frame of [0, 1])
        (await axesAt(`#t=${10 + frame}`)).forEach((axes, n) => expect(distance(axes, ODD_FRAMES[frame][n]) < 1e-3,
            `axes of frame ${frame}, node ${n}: ${axes}`));
    const [halfway, sheared] = await axesAt('#t=10.5');
    const length = (axes, i) => Math.hypot(...axes.slice(i, i + 3));
    expect(distance(halfway, [0.7071, 0.7071, 0, -0.7071, 0.7071, 0, 0, 0, 1]) < 1e-3, `halfway: ${halfway}`);
    expect(Math.abs(length(sheared, 0) - 2) < 1e-3 && Math.abs(length(sheared, 3) - 0.957) < 1e-3, `lengths halfway: ${sheared}`);
    await close(tab, 'odd');

    writeFileSync(page, oddPage(viewer, ODD_FRAMES.slice(0, 1)));
    const still = await open(browser, page);
    await still.keyboard.press('Space');
    await settle(still);
    expect(await frameOf(still) === 0, 'one frame plays as one frame');
    await close(still, 'one frame');

    writeFileSync(page, oddPage(viewer, ODD_FRAMES).replace('id="takes"', ''));
    const broken = await browser.newPage();
    await broken.goto(pathToFileURL(page).href);
    expect((await broken.$eval('#news', news => news.textContent)).includes('cannot be shown'), 'a broken page says so');
}

mkdirSync(folder, { recursive: true });
// Captures are recorded while the page of the one before is looked at.
const made = [];
const making = (async () => {
    for (const capture of CAPTURES) made.push(await makePage(capture));
})();
const browser = await puppeteer.launch({
    executablePath: browserFile,
    args: ['--no-sandbox', '--use-angle=swiftshader', '--enable-unsafe-swiftshader', '--disable-dev-shm-usage'],
    defaultViewport: { width: 320, height: 400 },
    protocolTimeout: 300000,
});
try {
    await tryOddPages(browser);
    await making;
    for (const one of made) {
        const tab = await open(browser, one.page);
        await comparePlaces(tab, one);
        if (one === made[0]) await tryHands(tab);
        await close(tab, one.name);
    }
    await tryTakes(browser);
} finally {
    await browser.close();
}
console.log(failures === 0 ? 'All is as it is meant to be' : `${failures} failed`);
process.exit(failures === 0 ? 0 : 1);

// The page: its parts, and what hands do to them.
import { addressOf, readAddress, showAddress } from './address.js';
import { Clock } from './clock.js';
import { Curves } from './curves.js';
import { readTakes } from './data.js';
import { Orbit } from './orbit.js';
import { Stage } from './scene.js';

const at = id => document.getElementById(id);
const SPEEDS = [0.1, 0.25, 0.5, 1, 2, 4];
const CLICK = 5;  // pixels that a hand may move
const REST = 250;  // milliseconds after which the address tells where a hand has stopped

const cannot = () => { at('news').textContent = 'These takes cannot be shown: the file is not whole, or this browser has no WebGL.'; };
window.addEventListener('error', cannot, { once: true });

const { title, takes } = readTakes();
const stage = new Stage(at('stage'));
const orbit = new Orbit(stage);
const clock = new Clock(takes[0]);
const curves = new Curves(at('plot'), at('cursor'), [...document.querySelectorAll('.legend span')]);
let takeNumber = 0, joint = 0, touched = -1, written = '';
const work = { last: 0, worst: 0, total: 0, frames: 0 };  // of the script, in milliseconds

const colours = () => {
    const style = getComputedStyle(document.documentElement);
    const names = ['floor', 'text', 'quiet', 'line', 'axis', 'trail', 'x', 'y', 'z'];
    return Object.fromEntries(names.map(name => [name, style.getPropertyValue(`--${name}`).trim()]));
};

function fill(select, texts) {
    select.replaceChildren(...texts.map((text, value) => new Option(text, value)));
}

// ---- what is shown

function showTake(number) {
    takeNumber = number;
    const take = takes[number];
    clock.take = take;
    clock.goToFrame(0);
    at('take').value = number;
    at('slider').max = clock.last;
    fill(at('joint'), take.nodes.map(node => node.name));
    stage.show(take, colours());
    chooseJoint(Math.max(take.nodes.findIndex(node => node.kind === 'joint'), 0));
    showAll();
}

function pickTake(number) {
    if (number === takeNumber) return;
    showTake(number);
    say(takes[number].name);
    noteAddress();
}

function showAll() {
    follow(false);
    orbit.frameAll();
}

function chooseJoint(node) {
    joint = node;
    at('joint').value = node;
    stage.choose(node);
    curves.show(takes[takeNumber], node, colours());
}

function chooseNext(step) {
    const { nodes } = takes[takeNumber];
    chooseJoint((joint + step + nodes.length) % nodes.length);
    say(nodes[joint].name);
}

function fit() {
    stage.fit();
    curves.fit();
}

function recolour() {
    stage.show(takes[takeNumber], colours());
    chooseJoint(joint);
}

function say(text) { at('said').textContent = text; }

function tellTime() {
    const { frame, last, seconds, take } = clock;
    const frames = `${Math.round(frame)} / ${last}`;
    const text = `frame ${frames}    ${seconds.toFixed(3)} s`;
    if (text === written) return;
    written = text;
    at('now').textContent = text;
    at('slider').value = frame;
    at('slider').setAttribute('aria-valuetext', `frame ${Math.round(frame)} of ${last}, ${seconds.toFixed(2)} seconds of ${take.endSeconds.toFixed(2)}`);
}

// Beside the joint that a hand is over.
function tellName() {
    const name = at('name');
    name.style.visibility = touched < 0 ? 'hidden' : 'visible';
    if (touched < 0) return;
    const [x, y] = stage.spotOf(touched);
    name.style.transform = `translate(${Math.round(x + 14)}px, ${Math.round(y - 12)}px)`;
    const text = takes[takeNumber].nodes[touched].name;
    if (name.textContent !== text) name.textContent = text;
}

let before = performance.now();
function frame(now) {
    const begun = performance.now();
    clock.advance((now - before) / 1000);
    before = now;
    stage.pose(clock.frame);
    orbit.update(stage.focus);
    tellTime();
    tellName();
    curves.pose(clock.frame);
    stage.draw();
    work.last = performance.now() - begun;
    work.worst = Math.max(work.worst, work.last);
    work.total += work.last;
    ++work.frames;
    requestAnimationFrame(frame);
}

// ---- what hands do

function play(plays) {
    clock.isPlaying = plays;
    at('play').classList.toggle('plays', plays);
    at('play').setAttribute('aria-label', plays ? 'Pause' : 'Play');
    at('play').title = plays ? 'Pause (Space)' : 'Play (Space)';
    if (!plays) noteAddress();
}

function goTo(move) {
    move();
    if (!clock.isPlaying) noteAddress();
}

const tellAddress = () => showAddress(addressOf(clock.seconds, takes.length > 1 ? takes[takeNumber].name : null));

// Browsers take it amiss when the address changes at each move of a hand.
let resting = 0;
function noteAddress() {
    clearTimeout(resting);
    resting = setTimeout(tellAddress, REST);
}

function openAddress() {
    const { seconds, take } = readAddress();
    const number = takes.findIndex(({ name }) => name === take);
    if (number >= 0 && number !== takeNumber) showTake(number);
    if (seconds !== null && Math.abs(seconds - clock.seconds) > 1e-4) clock.goToSeconds(seconds);
}

async function copyLink() {
    const address = tellAddress();
    try {
        await navigator.clipboard.writeText(address);
        say('The address of this moment is copied');
        at('link').textContent = 'Copied';
    } catch {
        at('link').textContent = 'In address bar';
    }
    setTimeout(() => { at('link').textContent = 'Copy link'; }, 1500);
}

function setSpeed(number) {
    clock.speed = SPEEDS[Math.min(Math.max(number, 0), SPEEDS.length - 1)];
    at('speed').value = SPEEDS.indexOf(clock.speed);
    say(`Speed ${clock.speed}`);
}

function follow(follows) {
    orbit.follow(follows, stage.focus);
    at('follow').setAttribute('aria-pressed', follows);
}

function showKeys(shows) {
    at('keys').hidden = !shows;
    at('help').setAttribute('aria-expanded', shows);
}

const toggleFollow = () => follow(!orbit.follows);
const toggleKeys = () => showKeys(at('keys').hidden);
const faster = step => setSpeed(SPEEDS.indexOf(clock.speed) + step);
const KEYS = {
    ' ': () => play(!clock.isPlaying),
    arrowleft: () => goTo(() => clock.step(-1)),
    arrowright: () => goTo(() => clock.step(1)),
    home: () => goTo(() => clock.goToFrame(0)),
    end: () => goTo(() => clock.goToFrame(clock.last)),
    '+': () => faster(1),
    '=': () => faster(1),
    '-': () => faster(-1),
    j: () => chooseNext(1),
    t: () => pickTake((takeNumber + 1) % takes.length),
    f: toggleFollow,
    r: showAll,
    c: copyLink,
    '?': toggleKeys,
    escape: () => showKeys(false),
};
const SHIFTED = {
    arrowleft: () => orbit.turn(-1, 0, 0),
    arrowright: () => orbit.turn(1, 0, 0),
    arrowup: () => orbit.turn(0, 1, 0),
    arrowdown: () => orbit.turn(0, -1, 0),
    '+': () => orbit.turn(0, 0, 1),
    '*': () => orbit.turn(0, 0, 1),
    '-': () => orbit.turn(0, 0, -1),
    _: () => orbit.turn(0, 0, -1),
    j: () => chooseNext(-1),
    '?': toggleKeys,
};

// A menu keeps all keys, and a button the one that presses it. A plus that takes Shift stays a plus.
function onKey(event) {
    if (event.ctrlKey || event.altKey || event.metaKey || event.target.matches('select')) return;
    if (event.key === ' ' && event.target.matches('button')) return;
    const takesShift = event.key === '+' && event.code !== 'NumpadAdd';
    const act = (event.shiftKey && !takesShift ? SHIFTED : KEYS)[event.key.toLowerCase()];
    if (!act) return;
    event.preventDefault();
    act();
}

// A hand that goes down and up on one spot chooses; one that moves looks around.
function watchStage(canvas) {
    let down = null;
    const touch = node => {
        if (node !== touched) stage.mark(touched = node);
    };
    const pick = event => stage.nodeAt(event.offsetX, event.offsetY, event.pointerType);
    canvas.addEventListener('pointerdown', event => { down = event; });
    canvas.addEventListener('pointermove', event => { if (event.buttons === 0) touch(pick(event)); });
    // A finger that is lifted leaves the name there.
    canvas.addEventListener('pointerleave', event => { if (event.pointerType !== 'touch') touch(-1); });
    canvas.addEventListener('pointerup', event => {
        if (!down || Math.hypot(event.clientX - down.clientX, event.clientY - down.clientY) > CLICK) return;
        const node = pick(event);
        touch(node);
        if (node >= 0) chooseJoint(node);
    });
}

function watchPlot(plot) {
    const go = event => {
        if (event.buttons !== 1) return;
        goTo(() => clock.goToFrame(Math.round(curves.frameAt(event.offsetX))));
    };
    plot.addEventListener('pointerdown', event => {
        plot.setPointerCapture(event.pointerId);
        go(event);
    });
    plot.addEventListener('pointermove', go);
}

function watchControls() {
    at('play').addEventListener('click', () => play(!clock.isPlaying));
    at('slider').addEventListener('input', event => goTo(() => clock.goToFrame(Number(event.target.value))));
    at('take').addEventListener('change', event => pickTake(Number(event.target.value)));
    at('joint').addEventListener('change', event => chooseJoint(Number(event.target.value)));
    at('speed').addEventListener('change', event => setSpeed(Number(event.target.value)));
    at('follow').addEventListener('click', toggleFollow);
    at('home').addEventListener('click', showAll);
    at('link').addEventListener('click', copyLink);
    at('help').addEventListener('click', toggleKeys);
    document.addEventListener('keydown', onKey);
    window.addEventListener('hashchange', openAddress);
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', recolour);
    new ResizeObserver(fit).observe(at('stage'));
    watchStage(at('stage'));
    watchPlot(at('plot'));
}

// ---- for whoever looks at the page from outside: all of it is read alone

window.lumiset = Object.freeze({
    get take() { return takes[takeNumber].name; },
    get seconds() { return clock.seconds; },
    get frame() { return clock.frame; },
    get speed() { return clock.speed; },
    get isPlaying() { return clock.isPlaying; },
    get joint() { return takes[takeNumber].nodes[joint].name; },
    get work() { return { ...work }; },
    get cells() { return takes.reduce((sum, take) => sum + take.frames * take.nodes.length, 0); },
    // Where the nodes are on the canvas, in its pixels.
    get spots() { return takes[takeNumber].nodes.map((_, node) => stage.spotOf(node)); },
    // The matrices that are drawn, for row vectors, by the names of the nodes.
    get worlds() {
        const { matrices } = stage.figure;
        return takes[takeNumber].nodes.map((node, i) =>
            ({ name: node.name, parent: node.parent, kind: node.kind, world: [...matrices.subarray(16 * i, 16 * i + 16)] }));
    },
});

document.title = title;
at('title').textContent = title;
at('title').title = title;
fill(at('take'), takes.map(take => take.name));
fill(at('speed'), SPEEDS.map(speed => `${speed}×`));
setSpeed(SPEEDS.indexOf(1));
stage.fit();
showTake(0);
openAddress();
watchControls();
window.removeEventListener('error', cannot);
at('news').remove();
requestAnimationFrame(frame);

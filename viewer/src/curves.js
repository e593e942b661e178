// The curves of a joint over the whole take: its place in the world in metres, and its turn beside its
// parent in degrees, as angles around z, x and y in this order.
import { Euler, Matrix4, Quaternion, Vector3 } from 'three';
import { digitsOf, multiples, roundStep, written } from './numbers.js';

const DEGREES = 180 / Math.PI;
const AXES = ['x', 'y', 'z'];
const LANES = [
    { from: 0, unit: ' m', digits: 3, least: 0.05 },
    { from: 3, unit: '°', digits: 1, least: 5 },
];
const EDGE = 44;  // pixels for the numbers at the left
const FOOT = 16;  // and for the seconds beneath

const whenIdle = window.requestIdleCallback ??
    (work => setTimeout(() => work({ timeRemaining: () => 8 }), 16));

// The six curves of a joint, read a little at a time.
class JointCurves {
    constructor(take, node) {
        Object.assign(this, { take, node, parent: take.nodes[node].parent, read: 0 });
        this.values = AXES.concat(AXES).map(() => new Float32Array(take.frames));
        [this.own, this.above] = [new Matrix4(), new Matrix4()];
        [this.place, this.turn, this.scale, this.angles] =
            [new Vector3(), new Quaternion(), new Vector3(), new Euler()];
    }

    get isWhole() { return this.read === this.take.frames; }

    // Until so many milliseconds have passed.
    readFor(milliseconds) {
        const end = performance.now() + milliseconds;
        while (!this.isWhole && (this.read % 64 > 0 || performance.now() < end)) this.readFrame(this.read++);
    }

    readFrame(frame) {
        const { take, node, parent, own, above } = this;
        take.matrix(frame, node, own.elements);
        for (let i = 0; i < 3; ++i) this.values[i][frame] = own.elements[12 + i];
        if (parent >= 0) {
            take.matrix(frame, parent, above.elements);
            own.premultiply(above.invert());
        }
        own.decompose(this.place, this.turn, this.scale);
        this.angles.setFromQuaternion(this.turn, 'ZXY');
        this.keepNear(frame, this.angles.toArray().slice(0, 3).map(angle => angle * DEGREES || 0));
    }

    // Of the ways to say the same turn, the one nearest to the frame before.
    keepNear(frame, [x, y, z]) {
        const before = [3, 4, 5].map(i => (frame > 0 ? this.values[i][frame - 1] : 0));
        const ways = [[x, y, z], [180 - x, y + 180, z + 180]].map(way =>
            way.map((angle, i) => angle - 360 * Math.round((angle - before[i]) / 360)));
        const [usual, other] = ways.map(way => way.reduce((sum, angle, i) => sum + Math.abs(angle - before[i]), 0));
        const way = frame > 0 && other < usual ? ways[1] : ways[0];
        way.forEach((angle, i) => { this.values[3 + i][frame] = angle; });
    }
}

function rangeOf(curves, read, least) {
    let [low, high] = [Infinity, -Infinity];
    for (const curve of curves)
        for (let i = 0; i < read; ++i) {
            const value = curve[i];
            if (value < low) low = value;
            if (value > high) high = value;
        }
    if (!(low <= high)) return [-1, 1];
    const room = Math.max(high - low, least) * 0.08 + Math.max(least - (high - low), 0) / 2;
    return [low - room, high + room];
}

export class Curves {
    constructor(canvas, cursor, numbers) {
        Object.assign(this, { canvas, cursor, numbers });
    }

    show(take, node, colours) {
        this.told = null;
        if (this.joint?.take !== take || this.joint.node !== node) this.joint = new JointCurves(take, node);
        this.colours = colours;
        this.fit();
    }

    // The size that the page gives the canvas.
    fit() {
        [this.width, this.height] = [this.canvas.clientWidth - EDGE, this.canvas.clientHeight];
        this.refresh();
    }

    // Reads on, and draws what is new, between frames.
    refresh() {
        if (this.isAtWork) return;
        this.isAtWork = true;
        whenIdle(deadline => {
            this.isAtWork = false;
            this.joint.readFor(Math.max(deadline.timeRemaining(), 4));
            const now = performance.now();
            if (this.joint.isWhole || now - (this.drawnAt ?? 0) > 500) {
                this.draw();
                this.drawnAt = now;
            }
            if (!this.joint.isWhole) this.refresh();
        }, { timeout: 250 });
    }

    // The cursor, and the numbers there.
    pose(frame) {
        this.cursor.style.transform = `translateX(${this.xOf(frame)}px)`;
        this.tell(Math.round(frame));
    }

    xOf(frame) { return EDGE + frame / Math.max(this.joint.take.frames - 1, 1) * this.width; }
    frameAt(x) { return (x - EDGE) / this.width * (this.joint.take.frames - 1); }

    tell(frame) {
        if (frame === this.told || frame >= this.joint.read) return;
        this.told = frame;
        LANES.forEach(({ from, unit, digits }, lane) => AXES.forEach((axis, i) => {
            this.numbers[3 * lane + i].textContent =
                `${axis} ${written(this.joint.values[from + i][frame], digits)}${unit}`;
        }));
    }

    draw() {
        const sharper = Math.min(devicePixelRatio, 2);
        [this.canvas.width, this.canvas.height] = [(this.width + EDGE) * sharper, this.height * sharper];
        const pen = this.canvas.getContext('2d');
        pen.scale(sharper, sharper);
        pen.font = '11px system-ui, sans-serif';
        pen.textBaseline = 'middle';
        this.drawSeconds(pen);
        const each = (this.height - FOOT) / 2;
        LANES.forEach((lane, number) => this.drawLane(pen, lane, number * each + 6, each - 12));
    }

    line(pen, x, y, toX, toY) {
        pen.strokeStyle = this.colours.line;
        pen.lineWidth = 1;
        pen.beginPath();
        pen.moveTo(x, y);
        pen.lineTo(toX, toY);
        pen.stroke();
    }

    // Seconds of the scene, as far apart as their numbers need.
    drawSeconds(pen) {
        const { startSeconds, endSeconds, frameSeconds } = this.joint.take;
        const step = roundStep(Math.max((endSeconds - startSeconds) / Math.max(this.width, 1) * 72, 1e-3));
        pen.fillStyle = this.colours.quiet;
        pen.textAlign = 'center';
        for (const seconds of multiples(step, startSeconds, endSeconds)) {
            const x = Math.round(this.xOf((seconds - startSeconds) / frameSeconds)) + 0.5;
            this.line(pen, x, 0, x, this.height - FOOT);
            const text = `${written(seconds, digitsOf(step))} s`;
            const half = pen.measureText(text).width / 2;
            pen.fillText(text, Math.min(x, EDGE + this.width - half), this.height - FOOT / 2 + 1);
        }
    }

    drawLane(pen, { from, unit, digits, least }, top, height) {
        const curves = this.joint.values.slice(from, from + 3);
        const [low, high] = rangeOf(curves, this.joint.read, least);
        const y = value => top + (high - value) / (high - low) * height;
        this.drawLines(pen, y, [low, high], unit, digits);
        curves.forEach((curve, i) => {
            pen.strokeStyle = this.colours[AXES[i]];
            pen.lineWidth = 1.5;
            this.drawCurve(pen, curve, y);
        });
    }

    // Lines across at round numbers.
    drawLines(pen, y, [low, high], unit, digits) {
        const step = roundStep((high - low) / 4);
        pen.fillStyle = this.colours.quiet;
        pen.textAlign = 'right';
        for (const at of multiples(step, low, high)) {
            const across = Math.round(y(at)) + 0.5;
            this.line(pen, EDGE, across, EDGE + this.width, across);
            pen.fillText(`${written(at, Math.min(digits, digitsOf(step)))}${unit}`, EDGE - 6, across);
        }
    }

    // Of the frames that share a column of pixels the least and the most.
    drawCurve(pen, curve, y) {
        const { read } = this.joint;
        const perColumn = Math.max(1, Math.floor(this.joint.take.frames / Math.max(this.width, 1)));
        pen.beginPath();
        for (let first = 0; first < read; first += perColumn) {
            const part = curve.subarray(first, Math.min(first + perColumn, read));
            const x = this.xOf(first);
            if (part.length > 1) {
                pen.lineTo(x, y(Math.min(...part)));
                pen.lineTo(x, y(Math.max(...part)));
            } else {
                pen.lineTo(x, y(part[0]));
            }
        }
        pen.stroke();
    }
}

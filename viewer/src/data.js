// The takes of the page, as its elements hold them (../README.md).

const decode = Uint8Array.fromBase64
    ? text => Uint8Array.fromBase64(text)
    : text => Uint8Array.from(atob(text), character => character.charCodeAt(0));

// What the comment in a template holds, which is let go.
function bytesOf({ content }) {
    const bytes = decode(content.firstChild.data);
    content.replaceChildren();
    return bytes.buffer;
}

const ONE = 32767;

// Frames that follow each other. They are decoded when the first of them is asked for.
class Chunk {
    constructor(element, nodes, first) {
        this.element = element;
        this.nodes = nodes;
        this.first = first;
        this.count = Number(element.dataset.frames);
        this.hasTurns = element.dataset.form === 'turns';
    }

    get isOpen() { return this.element === null; }

    open() {
        if (this.isOpen) return this;
        const bytes = bytesOf(this.element);
        const cells = this.count * this.nodes;
        const ahead = this.hasTurns ? 0 : this.nodes;
        this.longest = new Float32Array(bytes, 0, ahead);
        this.places = new Float32Array(bytes, 4 * ahead, 3 * cells);
        this.parts = new Int16Array(bytes, 4 * (ahead + 3 * cells), (this.hasTurns ? 4 : 9) * cells);
        this.element = null;
        return this;
    }

    // Writes the 16 numbers of a node's matrix, axis by axis, and then its place.
    matrix(frame, node, into, at) {
        const cell = (frame - this.first) * this.nodes + node;
        if (this.hasTurns) axesOfTurn(this.parts, 4 * cell, into, at);
        else this.axes(cell, node, into, at);
        for (let i = 0; i < 3; ++i) into[at + 12 + i] = this.places[3 * cell + i];
        into[at + 15] = 1;
    }

    place(frame, node, into, at) {
        const from = 3 * ((frame - this.first) * this.nodes + node);
        for (let i = 0; i < 3; ++i) into[at + i] = this.places[from + i];
    }

    axes(cell, node, into, at) {
        const scale = this.longest[node] / ONE;
        for (let i = 0; i < 9; ++i)
            into[at + 4 * Math.floor(i / 3) + i % 3] = this.parts[9 * cell + i] * scale;
    }
}

// The quaternion's length may be off by its rounding.
function axesOfTurn(parts, from, into, at) {
    let [x, y, z, w] = [parts[from], parts[from + 1], parts[from + 2], parts[from + 3]];
    const s = Math.SQRT2 / (Math.hypot(x, y, z, w) || 1);
    x *= s; y *= s; z *= s; w *= s;
    into[at] = 1 - y * y - z * z; into[at + 1] = x * y + z * w; into[at + 2] = x * z - y * w;
    into[at + 4] = x * y - z * w; into[at + 5] = 1 - x * x - z * z; into[at + 6] = y * z + x * w;
    into[at + 8] = x * z + y * w; into[at + 9] = y * z - x * w; into[at + 10] = 1 - x * x - y * y;
}

// Between two axes of one node: straight across, at the length that lies between theirs.
function blendAxis(a, b, part, at) {
    const before = Math.hypot(a[at], a[at + 1], a[at + 2]);
    const behind = Math.hypot(b[at], b[at + 1], b[at + 2]);
    for (let i = at; i < at + 3; ++i) a[i] += (b[i] - a[i]) * part;
    const is = Math.hypot(a[at], a[at + 1], a[at + 2]);
    const scale = is > 0 ? (before + (behind - before) * part) / is : 1;
    for (let i = at; i < at + 3; ++i) a[i] *= scale;
}

export class Take {
    constructor(told, number) {
        Object.assign(this, told);
        const elements = document.querySelectorAll(`template[data-take="${number}"]`);
        this.chunks = [];
        let first = 0;
        for (const element of elements) {
            if (!element.dataset.frames) continue;
            this.chunks.push(new Chunk(element, this.nodes.length, first));
            first += this.chunks.at(-1).count;
        }
        this.shapes = [...elements].find(element => 'shapes' in element.dataset);
        this.next = new Float32Array(16 * this.nodes.length);
        this.mostFrames = this.chunks[0].count;
    }

    get endSeconds() { return this.startSeconds + (this.frames - 1) * this.frameSeconds; }

    // All chunks but the last hold as many frames as the first.
    chunkOf(frame) { return this.chunks[Math.floor(frame / this.mostFrames)].open(); }

    // Of a node at a whole frame: its place alone, or the 16 numbers of its matrix.
    place(frame, node, into, at) { this.chunkOf(frame).place(frame, node, into, at); }
    matrix(frame, node, into) { this.chunkOf(frame).matrix(frame, node, into, 0); }

    // Of a frame, also between two: 16 numbers for each node.
    matrices(frame, into) {
        const whole = Math.floor(frame);
        this.read(whole, into);
        if (frame === whole) return;
        this.read(whole + 1, this.next);
        for (let at = 0; at < into.length; at += 16) {
            for (let axis = 0; axis < 12; axis += 4) blendAxis(into, this.next, frame - whole, at + axis);
            for (let i = at + 12; i < at + 15; ++i) into[i] += (this.next[i] - into[i]) * (frame - whole);
        }
    }

    read(frame, into) {
        const chunk = this.chunkOf(frame);
        for (let node = 0; node < this.nodes.length; ++node) chunk.matrix(frame, node, into, 16 * node);
    }

    // What each node looks like: the places, normals and colours of its vertices, three a triangle.
    takeShapes() {
        const bytes = bytesOf(this.shapes);
        const count = bytes.byteLength / 20;
        const places = new Float32Array(bytes, 0, 3 * count);
        const normals = new Int8Array(bytes, 12 * count, 4 * count);
        const colours = new Uint8Array(bytes, 16 * count, 4 * count);
        let first = 0;
        return this.nodes.map(({ vertices }) => {
            const from = first;
            first += vertices;
            return {
                places: places.subarray(3 * from, 3 * first),
                normals: normals.subarray(4 * from, 4 * first),
                colours: colours.subarray(4 * from, 4 * first),
            };
        });
    }
}

export function readTakes() {
    const told = JSON.parse(document.getElementById('takes').textContent);
    return { title: told.title, takes: told.takes.map((take, number) => new Take(take, number)) };
}

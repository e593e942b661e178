// The way of a joint: a little of what lies behind the present frame, and of what lies ahead. Beads
// are a thirtieth of a second apart: the further from each other, the faster it is.
import {
    BufferAttribute, BufferGeometry, CanvasTexture, Group, Line, LineBasicMaterial, Points, PointsMaterial,
} from 'three';

const SECONDS = 1.2;  // to either side
const BEAD_SECONDS = 1 / 30;
const MOST_POINTS = 1024;

function disc() {
    const canvas = document.createElement('canvas');
    canvas.width = canvas.height = 32;
    const pen = canvas.getContext('2d');
    pen.fillStyle = '#fff';
    pen.arc(16, 16, 15, 0, 2 * Math.PI);
    pen.fill();
    return new CanvasTexture(canvas);
}

export class Trail extends Group {
    constructor(take, node, colour) {
        super();
        Object.assign(this, { take, node, shown: -1 });
        this.reach = SECONDS / take.frameSeconds;
        // Frames from point to point, and points from bead to bead.
        this.stride = Math.max(1, Math.ceil(2 * this.reach / (MOST_POINTS - 2)));
        this.beadStride = Math.max(1, Math.round(BEAD_SECONDS / take.frameSeconds / this.stride));
        this.points = new BufferAttribute(new Float32Array(3 * MOST_POINTS), 3);
        const line = { color: colour, transparent: true };
        const dots = { ...line, map: disc(), alphaTest: 0.5, sizeAttenuation: false };
        this.behind = this.part(Line, this.points, new LineBasicMaterial(line));
        this.ahead = this.part(Line, this.points, new LineBasicMaterial({ ...line, opacity: 0.4 }));
        this.beads = this.part(Points, this.points, new PointsMaterial({ ...dots, size: 5 }));
        this.beads.geometry.setIndex(
            [...Array(Math.floor(MOST_POINTS / this.beadStride)).keys()].map(bead => bead * this.beadStride));
        const middle = new BufferAttribute(new Float32Array(3), 3);
        this.here = this.part(Points, middle, new PointsMaterial({ ...dots, size: 10, depthTest: false }));
    }

    part(Kind, points, material) {
        const geometry = new BufferGeometry();
        geometry.setAttribute('position', points);
        const object = new Kind(geometry, material);
        object.frustumCulled = false;
        this.add(object);
        return object;
    }

    // `place` is where the joint is now.
    pose(frame, place) {
        this.here.position.copy(place);
        const now = Math.floor(frame);
        if (now === this.shown) return;
        this.shown = now;
        const whole = this.stride * this.beadStride;  // so that beads stay where they are
        const first = Math.ceil(Math.max(now - this.reach, 0) / whole) * whole;
        const last = Math.min(now + this.reach, this.take.frames - 1);
        let count = 0, behind = 0;
        for (let at = first; at <= last; at += this.stride) {
            this.take.place(at, this.node, this.points.array, 3 * count++);
            if (at <= now) behind = count;
        }
        this.points.needsUpdate = true;
        this.behind.geometry.setDrawRange(0, behind);
        this.beads.geometry.setDrawRange(0, Math.ceil(behind / this.beadStride));
        this.ahead.geometry.setDrawRange(behind - 1, count - behind + 1);
    }
}

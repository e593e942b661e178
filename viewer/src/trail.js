// The way of a joint: a little of what lies behind the present frame, and of what lies ahead.
import { BufferAttribute, BufferGeometry, Group, Line, LineBasicMaterial, Points, PointsMaterial } from 'three';

const SECONDS = 1.2;  // to either side
const MOST_POINTS = 1024;

export class Trail extends Group {
    constructor(take, node, colour) {
        super();
        Object.assign(this, { take, node, shown: -1 });
        this.points = new BufferAttribute(new Float32Array(3 * MOST_POINTS), 3);
        const look = { color: colour, transparent: true };
        this.behind = this.part(Line, new LineBasicMaterial(look));
        this.ahead = this.part(Line, new LineBasicMaterial({ ...look, opacity: 0.35 }));
        this.beads = this.part(Points, new PointsMaterial({ ...look, size: 4, sizeAttenuation: false }));
    }

    part(Kind, material) {
        const geometry = new BufferGeometry();
        geometry.setAttribute('position', this.points);
        const object = new Kind(geometry, material);
        object.frustumCulled = false;
        this.add(object);
        return object;
    }

    // Frames that are too many for the points are passed over alike.
    pose(frame) {
        const now = Math.floor(frame);
        if (now === this.shown) return;
        this.shown = now;
        const reach = SECONDS / this.take.frameSeconds;
        const stride = Math.max(1, Math.ceil(2 * (reach + 1) / (MOST_POINTS - 2)));
        const first = now - Math.floor(Math.min(reach, now) / stride) * stride;
        const last = Math.min(now + reach, this.take.frames - 1);
        let count = 0, behind = 0;
        for (let at = first; at <= last; at += stride) {
            this.take.place(at, this.node, this.points.array, 3 * count++);
            if (at <= now) behind = count;
        }
        this.points.needsUpdate = true;
        this.behind.geometry.setDrawRange(0, behind);
        this.beads.geometry.setDrawRange(0, behind);
        this.ahead.geometry.setDrawRange(behind - 1, count - behind + 1);
    }

    dispose() {
        for (const child of this.children) {
            child.geometry.dispose();
            child.material.dispose();
        }
    }
}

// The ground: a grid of metres with numbers at its edges, and what falls on it as shadow.
import {
    BufferGeometry, CanvasTexture, Float32BufferAttribute, Group, LineBasicMaterial, LineSegments, Mesh,
    PlaneGeometry, ShadowMaterial, Sprite, SpriteMaterial,
} from 'three';
import { digitsOf, multiples, roundStep, written } from './numbers.js';

const MOST_LINES = 24;  // to a side, so that they can be told apart

// Metres from line to line.
function spacing(span) {
    const step = roundStep(Math.max(span / MOST_LINES, 0.05));
    return span > 3 ? Math.max(step, 1) : step;
}

function lines(points, colour, opacity) {
    const geometry = new BufferGeometry();
    geometry.setAttribute('position', new Float32BufferAttribute(points, 3));
    return new LineSegments(geometry, new LineBasicMaterial({ color: colour, transparent: true, opacity }));
}

// Of one size on the screen, however far away.
function label(text, colour) {
    const canvas = document.createElement('canvas');
    [canvas.width, canvas.height] = [192, 64];
    const pen = canvas.getContext('2d');
    pen.font = '600 40px system-ui, sans-serif';
    pen.textAlign = 'center';
    pen.textBaseline = 'middle';
    pen.fillStyle = colour;
    pen.fillText(text, 96, 34);
    const look = { map: new CanvasTexture(canvas), depthWrite: false, sizeAttenuation: false };
    const sprite = new Sprite(new SpriteMaterial(look));
    sprite.scale.set(0.075, 0.025, 1);
    return sprite;
}

function shadowed([x0, x1, z0, z1]) {
    const plane = new Mesh(new PlaneGeometry(x1 - x0, z1 - z0), new ShadowMaterial({ opacity: 0.35 }));
    plane.rotation.x = -Math.PI / 2;
    plane.position.set((x0 + x1) / 2, 0, (z0 + z1) / 2);
    plane.receiveShadow = true;
    return plane;
}

// The last number of each side says which axis it counts along.
function numbers(group, [x0, x1, z0, z1], step, colour) {
    const every = step * Math.max(1, Math.round((x1 - x0) / step / 5));
    const sides = [['x', x0, x1, v => [v, z1 + step / 3]], ['z', z0, z1, v => [x0 - step / 3, v]]];
    for (const [axis, from, to, place] of sides)
        multiples(every, from, to).forEach((at, i, all) => {
            const metres = `${written(at, digitsOf(step))} m`;
            const sprite = label(i + 1 === all.length ? `${axis} ${metres}` : metres, colour);
            const [x, z] = place(at);
            sprite.position.set(x, 0, z);
            group.add(sprite);
        });
}

// Under a motion from `least` to `most`, in metres, with some room around.
export function ground({ least, most }, { line, axis, text }) {
    const group = new Group();
    const size = Math.max(most[0] - least[0], most[1] - least[1], most[2] - least[2], 0.1);
    const step = spacing(size * 1.6);
    const down = value => Math.floor((value - 0.3 * size) / step) * step;
    const up = value => Math.ceil((value + 0.3 * size) / step) * step;
    const edges = [down(least[0]), up(most[0]), down(least[2]), up(most[2])];
    const [x0, x1, z0, z1] = edges;
    const usual = [], through = [];
    for (const x of multiples(step, x0, x1)) (x === 0 ? through : usual).push(x, 0, z0, x, 0, z1);
    for (const z of multiples(step, z0, z1)) (z === 0 ? through : usual).push(x0, 0, z, x1, 0, z);
    group.add(lines(usual, line, 0.9), lines(through, axis, 1), shadowed(edges));
    numbers(group, edges, step, text);
    return group;
}

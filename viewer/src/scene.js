// What the canvas shows: a take's figure on its ground, in the colours of the page.
import {
    Color, ColorManagement, DirectionalLight, HemisphereLight, LinearSRGBColorSpace,
    PerspectiveCamera, Raycaster, Scene, Vector2, Vector3, WebGLRenderer,
} from 'three';
import { Figure } from './figure.js';
import { ground } from './ground.js';
import { Trail } from './trail.js';

// Colours pass as they are: the shapes tell them as a screen shows them.
ColorManagement.enabled = false;

const REACH = { mouse: 0.025, touch: 0.05 };  // of a joint, in heights of the canvas

export class Stage {
    constructor(canvas) {
        this.canvas = canvas;
        this.renderer = new WebGLRenderer({ canvas, antialias: true });
        this.renderer.outputColorSpace = LinearSRGBColorSpace;
        this.renderer.shadowMap.enabled = true;
        this.scene = new Scene();
        this.camera = new PerspectiveCamera(40, 1, 0.01, 1000);
        this.raycaster = new Raycaster();
        this.focus = new Vector3();
        canvas.addEventListener('webglcontextrestored', () => { this.isStale = true; });
        this.addLights();
    }

    addLights() {
        this.sun = new DirectionalLight(0xffffff, 2.1);
        this.sun.castShadow = true;
        this.sun.shadow.mapSize.set(1024, 1024);
        this.sun.shadow.bias = -0.002;
        this.sky = new HemisphereLight(0xffffff, 0x8f98a3, 1.8);
        this.scene.add(this.sun, this.sun.target, this.sky);
    }

    // `colours` are those of the page, by their names there.
    show(take, colours) {
        this.remove(this.figure, this.ground);
        this.take = take;
        this.colours = colours;
        this.size = Math.max(...take.most.map((most, i) => most - take.least[i]), 0.1);
        this.scene.background = new Color(colours.floor);
        this.figure = new Figure(take, colours.text);
        this.ground = ground(take, colours);
        this.scene.add(this.figure, this.ground);
        this.lightFigure();
    }

    remove(...parts) {
        for (const part of parts.filter(Boolean)) {
            this.scene.remove(part);
            part.traverse(({ geometry, material }) => {
                geometry?.dispose();
                material?.map?.dispose();
            });
        }
    }

    // The light goes along with the figure, whose height its shadow is for.
    lightFigure() {
        this.height = Math.max(this.take.most[1] - Math.min(this.take.least[1], 0), 0.1);
        const { camera } = this.sun.shadow;
        camera.left = camera.bottom = -1.3 * this.height;
        camera.right = camera.top = 1.3 * this.height;
        camera.far = 8 * this.height;
        camera.updateProjectionMatrix();
    }

    choose(node) {
        this.remove(this.trail);
        this.chosen = node;
        this.trail = new Trail(this.take, node, this.colours.trail);
        this.scene.add(this.trail);
        this.posed = null;
        this.mark(-1);
    }

    mark(touched) {
        this.figure.mark(this.chosen, touched);
        this.isStale = true;
    }

    pose(frame) {
        if (frame === this.posed) return;
        this.posed = frame;
        this.isStale = true;
        this.figure.pose(frame);
        this.figure.placeOf(this.chosen, this.focus);
        this.trail.pose(frame, this.focus);
        this.sun.target.position.copy(this.focus);
        this.sun.position.copy(this.focus).addScaledVector({ x: 0.9, y: 2.4, z: 1.2 }, this.height);
    }

    // The size that the page gives the canvas.
    fit() {
        const { clientWidth: width, clientHeight: height } = this.canvas;
        this.renderer.setPixelRatio(Math.min(devicePixelRatio, 2));
        this.renderer.setSize(width, height, false);
        this.camera.aspect = width / Math.max(height, 1);
        this.camera.updateProjectionMatrix();
        this.isStale = true;
    }

    // Whatever is drawn already stays.
    draw() {
        if (!this.isStale) return;
        this.isStale = false;
        this.renderer.render(this.scene, this.camera);
    }

    // The node at a place of the canvas, in its pixels; -1 for none.
    nodeAt(x, y, kind) {
        const { clientWidth: width, clientHeight: height } = this.canvas;
        const pointer = new Vector2(2 * x / width - 1, 1 - 2 * y / height);
        this.raycaster.setFromCamera(pointer, this.camera);
        return this.figure.pick(this.raycaster, this.camera, pointer, REACH[kind] ?? REACH.touch);
    }

    // Where a node is on the canvas, in its pixels.
    spotOf(node) {
        const place = this.figure.placeOf(node).project(this.camera);
        return [(place.x + 1) / 2 * this.canvas.clientWidth, (1 - place.y) / 2 * this.canvas.clientHeight];
    }
}

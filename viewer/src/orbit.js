// How one looks at a take: around a point, which can go along with the chosen joint.
import { Spherical, Vector3 } from 'three';
import { OrbitControls } from 'three/addons/controls/OrbitControls.js';

const TURN = Math.PI / 36;  // for a key
const NEARER = 0.9;

export class Orbit {
    constructor(stage) {
        this.stage = stage;
        this.controls = new OrbitControls(stage.camera, stage.canvas);
        this.controls.enableDamping = !matchMedia('(prefers-reduced-motion: reduce)').matches;
        this.controls.dampingFactor = 0.12;
        this.controls.maxPolarAngle = 0.62 * Math.PI;
        this.controls.addEventListener('change', () => { stage.isStale = true; });
        this.follows = false;
        this.before = new Vector3();
    }

    // From above at the whole motion, whose longer way goes across the picture, as near as it fits.
    frameAll() {
        const { take, camera, size } = this.stage;
        const [least, most] = [new Vector3(...take.least), new Vector3(...take.most)];
        const corners = [...Array(8).keys()].map(corner =>
            new Vector3(...['x', 'y', 'z'].map((axis, i) => (corner >> i & 1 ? most : least)[axis])));
        const side = most.z - least.z > most.x - least.x ? 0.34 : 0.14;
        const middle = new Vector3().addVectors(least, most).divideScalar(2);
        let away = Math.max(middle.distanceTo(most), 0.5 * size);
        do {
            away *= 1.05;
            camera.position.setFromSphericalCoords(away, 0.44 * Math.PI, side * Math.PI).add(middle);
            camera.lookAt(middle);
            camera.updateMatrixWorld();
        } while (away < 20 * size && !this.holds(corners, away, middle));
        [camera.near, camera.far] = [size / 200, 60 * size];
        camera.updateProjectionMatrix();
        [this.controls.minDistance, this.controls.maxDistance] = [size / 20, 12 * size];
        this.controls.target.copy(middle);
        this.controls.update();
    }

    // Whether the corners are in the middle of the picture. If not, `middle` is moved towards theirs.
    holds(corners, away, middle) {
        const { camera } = this.stage;
        const seen = corners.map(corner => corner.clone().project(camera));
        const ends = ['x', 'y'].map(axis => seen.map(corner => corner[axis]))
            .map(places => [Math.min(...places), Math.max(...places)]);
        if (ends.every(([least, most]) => least > -0.86 && most < 0.86 && Math.abs(least + most) < 0.04)) return true;
        const half = away * Math.tan(camera.fov / 360 * Math.PI);
        ends.forEach(([least, most], i) => {
            const across = new Vector3().setFromMatrixColumn(camera.matrixWorld, i);
            middle.addScaledVector(across, (least + most) / 2 * half * (i === 0 ? camera.aspect : 1));
        });
        return false;
    }

    // `focus` is where the chosen joint is now.
    update(focus) {
        if (this.follows) this.move(new Vector3().subVectors(focus, this.before));
        this.before.copy(focus);
        this.controls.update();
    }

    // Looks at the chosen joint from now on, from where one looks now.
    follow(follows, focus) {
        this.follows = follows;
        if (follows) this.move(new Vector3().subVectors(focus, this.controls.target));
    }

    // A way that is no number is none.
    move(way) {
        if (!Number.isFinite(way.lengthSq())) return;
        this.controls.target.add(way);
        this.stage.camera.position.add(way);
    }

    // By keys: to the side, upwards and nearer, in steps.
    turn(side, up, nearer) {
        const { target } = this.controls;
        const { position } = this.stage.camera;
        const around = new Spherical().setFromVector3(position.clone().sub(target));
        around.theta += side * TURN;
        around.phi = Math.min(Math.max(around.phi - up * TURN, 0.05), this.controls.maxPolarAngle);
        around.radius *= NEARER ** nearer;
        position.setFromSpherical(around.makeSafe()).add(target);
        this.controls.update();
    }
}

// How one looks at a take: around a point, which can go along with the chosen joint.
import { Spherical, Vector3 } from 'three';
import { OrbitControls } from 'three/addons/controls/OrbitControls.js';

const TURN = Math.PI / 36;  // for a key
const NEARER = 0.9;

export class Orbit {
    constructor(stage) {
        this.stage = stage;
        this.controls = new OrbitControls(stage.camera, stage.canvas);
        this.controls.enableDamping = true;
        this.controls.dampingFactor = 0.12;
        this.controls.maxPolarAngle = 0.62 * Math.PI;
        this.follows = false;
        this.before = new Vector3();
    }

    // From above at the whole motion, whose longer way goes across the picture.
    frameAll() {
        const { take, camera, size } = this.stage;
        const [least, most] = [new Vector3(...take.least), new Vector3(...take.most)];
        const middle = new Vector3().addVectors(least, most).divideScalar(2);
        const side = most.z - least.z > most.x - least.x ? 0.34 : 0.14;
        const corners = [...Array(8).keys()].map(corner =>
            new Vector3(...['x', 'y', 'z'].map((axis, i) => (corner >> i & 1 ? most : least)[axis])));
        const isSeen = corner => {
            const { x, y } = corner.clone().project(camera);
            return Math.abs(x) < 0.9 && Math.abs(y) < 0.9;
        };
        let away = 0.5 * size;
        do {
            away *= 1.05;
            camera.position.setFromSphericalCoords(away, 0.44 * Math.PI, side * Math.PI).add(middle);
            camera.lookAt(middle);
            camera.updateMatrixWorld();
        } while (away < 20 * size && !corners.every(isSeen));
        [camera.near, camera.far] = [size / 200, 60 * size];
        camera.updateProjectionMatrix();
        [this.controls.minDistance, this.controls.maxDistance] = [size / 20, 12 * size];
        this.controls.target.copy(middle);
        this.controls.update();
    }

    // `focus` is where the chosen joint is now.
    update(focus) {
        if (this.follows) {
            const moved = new Vector3().subVectors(focus, this.before);
            this.controls.target.add(moved);
            this.stage.camera.position.add(moved);
        }
        this.before.copy(focus);
        this.controls.update();
    }

    // Looks at the chosen joint from now on, from where one looks now.
    follow(follows, focus) {
        this.follows = follows;
        if (!follows) return;
        const moved = new Vector3().subVectors(focus, this.controls.target);
        this.controls.target.add(moved);
        this.stage.camera.position.add(moved);
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

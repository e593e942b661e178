// The nodes of a take as they look: bones, or where nothing shows lines from each node to its parent.
import {
    BufferAttribute, BufferGeometry, Color, DoubleSide, Group, LineBasicMaterial, LineSegments, Mesh,
    MeshLambertMaterial, Vector3,
} from 'three';

// The shapes' colours are told as a screen shows them.
const material = glow => new MeshLambertMaterial({
    vertexColors: true, side: DoubleSide, emissive: new Color(glow, glow, glow),
});
const LOOKS = { plain: material(0), touched: material(0.12), chosen: material(0.22) };

function meshOf({ places, normals, colours }) {
    const geometry = new BufferGeometry();
    geometry.setAttribute('position', new BufferAttribute(places, 3));
    geometry.setAttribute('normal', new BufferAttribute(normals, 4, true));
    geometry.setAttribute('color', new BufferAttribute(colours, 4, true));
    const mesh = new Mesh(geometry, LOOKS.plain);
    mesh.castShadow = mesh.receiveShadow = true;
    mesh.matrixAutoUpdate = mesh.matrixWorldAutoUpdate = false;
    return mesh;
}

export class Figure extends Group {
    constructor(take, colour) {
        super();
        this.take = take;
        this.matrices = new Float32Array(16 * take.nodes.length);
        take.shown ??= take.takeShapes();
        this.meshes = take.nodes.map((node, number) => {
            if (node.kind === 'camera' || node.vertices === 0) return null;
            const mesh = meshOf(take.shown[number]);
            mesh.userData.node = number;
            this.add(mesh);
            return mesh;
        });
        if (this.children.length === 0) this.addSticks(colour);
    }

    addSticks(colour) {
        const { nodes } = this.take;
        this.ends = nodes.flatMap((node, number) => (node.parent < 0 ? [] : [number, node.parent]));
        const places = new BufferAttribute(new Float32Array(3 * this.ends.length), 3);
        this.sticks = new LineSegments(new BufferGeometry(), new LineBasicMaterial({ color: colour }));
        this.sticks.geometry.setAttribute('position', places);
        this.sticks.frustumCulled = false;
        this.add(this.sticks);
    }

    pose(frame) {
        this.take.matrices(frame, this.matrices);
        this.meshes.forEach((mesh, number) => mesh?.matrixWorld.fromArray(this.matrices, 16 * number));
        if (!this.sticks) return;
        const { position } = this.sticks.geometry.attributes;
        this.ends.forEach((node, end) =>
            position.array.set(this.matrices.subarray(16 * node + 12, 16 * node + 15), 3 * end));
        position.needsUpdate = true;
    }

    placeOf(node, into = new Vector3()) { return into.fromArray(this.matrices, 16 * node + 12); }

    mark(chosen, touched) {
        this.meshes.forEach((mesh, number) => {
            if (!mesh) return;
            if (number === chosen) mesh.material = LOOKS.chosen;
            else mesh.material = number === touched ? LOOKS.touched : LOOKS.plain;
        });
    }

    // The node that a ray hits first; else the one whose place is nearest on the screen, if it is
    // nearer than `reach` (of the screen's height). -1 for none.
    pick(raycaster, camera, pointer, reach) {
        const [hit] = raycaster.intersectObjects(this.meshes.filter(Boolean), false);
        if (hit) return hit.object.userData.node;
        let [nearest, least] = [-1, reach];
        this.take.nodes.forEach((node, number) => {
            if (node.kind === 'camera') return;
            const place = this.placeOf(number).project(camera);
            const away = Math.hypot((place.x - pointer.x) * camera.aspect, place.y - pointer.y) / 2;
            if (away < least && place.z < 1) [nearest, least] = [number, away];
        });
        return nearest;
    }
}

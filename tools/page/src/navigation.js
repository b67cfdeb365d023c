// Turning, moving and zooming, by pointer and by keys.
import { Spherical, Vector3 } from 'three';
import { OrbitControls } from 'three/addons/controls/OrbitControls.js';

const kTurn = Math.PI / 24;
const kStep = 0.08; // of the distance
const kZoom = 1.15;
const kFlat = 1e-3;

/** From where a mesh of these extents is best seen, and what is up then. */
function startFor(facts, size) {
  const up = new Vector3(0, 0, 1);
  if (facts.toward) {
    const toward = new Vector3(...facts.toward);
    return { toward, up: Math.abs(toward.z) < 0.999 ? up : new Vector3(0, 1, 0) };
  }
  // A drawing in a plane is looked at straight, not across.
  const flat = [2, 1, 0].find((axis) => size[axis] < kFlat * Math.max(...size));
  if (flat === 2) return { toward: new Vector3(0, 0, 1), up: new Vector3(0, 1, 0) };
  if (flat === 1) return { toward: new Vector3(0, -1, 0), up };
  if (flat === 0) return { toward: new Vector3(1, 0, 0), up };
  return { toward: new Vector3(0.55, -1, 0.62), up };
}

export class Navigation {
  /** surface: a SurfaceScene; facts.toward: a direction to begin with, or nothing. */
  constructor(surface, facts) {
    this.surface = surface;
    this.start = startFor(facts, surface.place.size);
    surface.camera.up.copy(this.start.up);
    this.controls = new OrbitControls(surface.camera, surface.canvas);
    this.controls.zoomToCursor = true;
    this.controls.minDistance = 0.01;
    this.controls.maxDistance = 20;
    this.controls.addEventListener('change', () => surface.draw());
    this.controls.addEventListener('start', () => (this.fresh = false));
    this.reset();
  }

  reset() {
    this.controls.target.copy(this.surface.lookFrom(this.start.toward, this.start.up));
    this.controls.update();
    this.fresh = true;
  }

  /** After the window changed: all of the mesh again, unless someone has chosen a view. */
  resized() {
    if (this.fresh) this.reset();
  }

  /** Handles a key of the canvas; false when it means nothing here. */
  key(event) {
    const action = this.#actionFor(event);
    if (!action) return false;
    this.fresh = false;
    action();
    this.controls.update();
    this.surface.draw();
    return true;
  }

  #actionFor({ key, shiftKey }) {
    const move = shiftKey ? (x, y) => this.#pan(x, y) : (x, y) => this.#turn(x, y);
    return {
      ArrowLeft: () => move(-1, 0),
      ArrowRight: () => move(1, 0),
      ArrowUp: () => move(0, 1),
      ArrowDown: () => move(0, -1),
      '+': () => this.#zoom(1 / kZoom),
      '=': () => this.#zoom(1 / kZoom),
      '-': () => this.#zoom(kZoom),
      Home: () => this.reset(),
      0: () => this.reset(),
    }[key];
  }

  get #offset() {
    return this.surface.camera.position.clone().sub(this.controls.target);
  }

  #turn(x, y) {
    const { camera } = this.surface;
    const toUp = camera.up.y === 1 ? (v) => v : (v) => v.set(v.x, v.z, -v.y);
    const back = camera.up.y === 1 ? (v) => v : (v) => v.set(v.x, -v.z, v.y);
    const place = new Spherical().setFromVector3(toUp(this.#offset));
    place.theta -= x * kTurn;
    place.phi -= y * kTurn;
    place.makeSafe();
    camera.position.copy(back(new Vector3().setFromSpherical(place))).add(this.controls.target);
  }

  #pan(x, y) {
    const { camera } = this.surface;
    const step = kStep * this.#offset.length();
    const shift = new Vector3(x * step, y * step, 0).applyQuaternion(camera.quaternion);
    camera.position.add(shift);
    this.controls.target.add(shift);
  }

  #zoom(factor) {
    const offset = this.#offset.multiplyScalar(factor);
    this.surface.camera.position.copy(this.controls.target).add(offset);
  }
}

// Turning, moving and zooming, by pointer and by keys.
import { Spherical, Vector3 } from 'three';
import { OrbitControls } from 'three/addons/controls/OrbitControls.js';
import { firstView, namedView, toThree } from './views.js';

const kTurn = Math.PI / 24;
const kStep = 0.08; // of the distance
const kZoom = 1.15;
const kMuchNearer = 0.92; // from there the mesh looks so much larger that another side may be shown
const kViewKeys = { 1: 'front', 2: 'back', 3: 'left', 4: 'right', 5: 'top', 6: 'iso' };

export class Navigation {
  /** surface: a SurfaceScene; facts: {up, toward}; `changed()` after every move. */
  constructor(surface, facts, changed) {
    this.surface = surface;
    this.changed = changed;
    this.upAxis = facts.up ?? 'z';
    this.start = firstView(facts, surface.place.size);
    surface.canvas.addEventListener('wheel', () => (this.fresh = false), { passive: true });
    this.reset();
  }

  reset() {
    this.chosen = null;
    this.#look(this.start);
    this.fresh = true;
    this.changed();
  }

  /** 'front', 'top' and so on: all of the mesh from there. */
  lookFrom(name) {
    this.chosen = namedView(name, this.upAxis);
    this.#look(this.chosen);
    this.fresh = true;
    this.changed();
  }

  /** After the window changed: all of the mesh again, unless someone has turned it. */
  resized() {
    if (this.fresh) this.#look(this.chosen ?? this.start);
  }

  /** Camera, target and what is up, nine numbers; null as the page begins. */
  state() {
    if (this.fresh && !this.chosen) return null;
    const { camera } = this.surface;
    return [...camera.position, ...this.controls.target, ...camera.up];
  }

  take(state) {
    const [position, target, up] = [0, 3, 6].map((k) => new Vector3().fromArray(state, k));
    if (position.distanceTo(target) === 0 || up.length() === 0) return;
    this.#standOn(up.normalize());
    this.surface.camera.position.copy(position);
    this.controls.target.copy(target);
    this.fresh = false;
    this.controls.update();
    this.surface.draw();
    this.changed();
  }

  /** Whether the pointer turns the mesh. */
  suspend(isSuspended) {
    this.controls.enabled = !isSuspended;
  }

  /** Handles a key of the canvas; false when it means nothing here. */
  key(event) {
    const action = this.#actionFor(event);
    if (!action) return false;
    action();
    return true;
  }

  #actionFor({ key, shiftKey }) {
    const move = shiftKey ? (x, y) => this.#pan(x, y) : (x, y) => this.#turn(x, y);
    if (key in kViewKeys) return () => this.lookFrom(kViewKeys[key]);
    if (key === 'Home' || key === '0') return () => this.reset();
    const step = {
      ArrowLeft: () => move(-1, 0),
      ArrowRight: () => move(1, 0),
      ArrowUp: () => move(0, 1),
      ArrowDown: () => move(0, -1),
      '+': () => this.#zoom(1 / kZoom),
      '=': () => this.#zoom(1 / kZoom),
      '-': () => this.#zoom(kZoom),
    }[key];
    return step && (() => this.#moveBy(step));
  }

  #moveBy(step) {
    this.fresh = false;
    this.surface.motion.stir();
    step();
    this.controls.update();
    this.surface.draw();
    this.changed();
  }

  #look({ toward, or, up }) {
    this.#standOn(up);
    if (or && this.surface.lookDistance(or, up) < kMuchNearer * this.surface.lookDistance(toward, up)) toward = or;
    this.controls.target.copy(this.surface.lookFrom(toward, up));
    this.controls.update();
  }

  /** The controls take what is up once: another direction needs new ones. */
  #standOn(up) {
    const { camera, canvas } = this.surface;
    if (this.controls && camera.up.distanceTo(up) === 0) return;
    this.controls?.dispose();
    camera.up.copy(up);
    this.controls = new OrbitControls(camera, canvas);
    canvas.style.touchAction = 'none';
    this.controls.zoomToCursor = true;
    this.controls.minDistance = 0.01;
    this.controls.maxDistance = 20;
    // A click is a start and an end without a change between.
    let isHeld = false;
    this.controls.addEventListener('start', () => (isHeld = true));
    this.controls.addEventListener('end', () => ((isHeld = false), this.changed()));
    this.controls.addEventListener('change', () => {
      if (isHeld) this.fresh = false;
      if (isHeld) this.surface.motion.stir();
      this.surface.draw();
    });
  }

  get #offset() {
    return this.surface.camera.position.clone().sub(this.controls.target);
  }

  #turn(x, y) {
    const { camera } = this.surface;
    const turned = toThree(camera.up);
    const place = new Spherical().setFromVector3(this.#offset.applyQuaternion(turned));
    place.theta -= x * kTurn;
    place.phi -= y * kTurn;
    place.makeSafe();
    const offset = new Vector3().setFromSpherical(place).applyQuaternion(turned.invert());
    camera.position.copy(offset).add(this.controls.target);
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

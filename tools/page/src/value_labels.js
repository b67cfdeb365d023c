// Numbers on the level curves, upright however the mesh is turned.
//
// Each level has at most one label, on one of its three longest curves, at one of seven places along
// each. Whenever the picture changes, levels are taken one after another, those first that stay when
// curves are thinned out; a label goes to its last place if that is still good, else to the first
// place that is in view, in front, far enough from the next curve and clear of all labels so far.
import { Vector3 } from 'three';
import { lengthOf } from './curves.js';
import { levelTexts } from './levels.js';
import { rankOf } from './spacing.js';

const kFont = "600 12px system-ui, -apple-system, 'Segoe UI', 'Liberation Sans', sans-serif";
const kHeight = 14;
const kHalo = 3.5;
const kRoom = 10; // pixels between labels
const kLeastGap = 5; // pixels between the curves that have labels
const kCurvesOfLevel = 3;
const kPlaces = [0.5, 0.25, 0.75, 0.1, 0.9, 0.4, 0.6];
const kLooks = {
  onColours: { ink: '#0f1216', halo: 'rgb(255 255 255 / 88%)' },
  light: { ink: '#16191d', halo: 'rgb(247 248 250 / 92%)' },
  dark: { ink: '#eef1f4', halo: 'rgb(28 32 37 / 92%)' },
};

export class ValueLabels {
  /** canvas: a second one, above the scene's. */
  constructor(canvas, surface) {
    this.canvas = canvas;
    this.surface = surface;
    this.kept = new Map(); // by level: the place that had the label last
  }

  /** After the field or the levels have changed. */
  prepare() {
    const { surface } = this;
    const { traced } = surface;
    const byLevel = surface.levels.map(() => []);
    traced.levels.forEach((l, c) => byLevel[l].push({ c, length: lengthOf(traced, c) }));
    this.levels = levelTexts(surface.levels).map((text, l) => {
      const longest = byLevel[l].sort((a, b) => b.length - a.length).slice(0, kCurvesOfLevel);
      return { text, rank: rankOf(l), places: longest.flatMap(({ c }) => this.#placesOn(c)) };
    });
    this.kept.clear();
  }

  #placesOn(curve) {
    const { points, starts } = this.surface.traced;
    const count = starts[curve + 1] - starts[curve];
    return kPlaces.map((part) => {
      const p = starts[curve] + Math.floor(part * (count - 1));
      return { at: new Vector3().fromArray(points, 3 * p), gap: this.surface.gaps[4 * p + 3] };
    });
  }

  draw() {
    const { surface, canvas } = this;
    const isShown = surface.shown.values && surface.shown.curves && this.levels !== undefined;
    this.drawn = [];
    // Without a graphics card an empty canvas over all of the window takes a quarter of every frame.
    if (canvas.hidden && !isShown) return;
    canvas.hidden = !isShown;
    const context = canvas.getContext('2d');
    const ratio = surface.pixelRatio;
    const [width, height] = [Math.round(surface.width * ratio), Math.round(surface.height * ratio)];
    if (canvas.width !== width || canvas.height !== height) Object.assign(canvas, { width, height });
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
    context.clearRect(0, 0, surface.width, surface.height);
    if (!isShown) return;
    const look = kLooks[surface.shown.heatMap ? 'onColours' : surface.theme];
    Object.assign(context, { font: kFont, textAlign: 'center', textBaseline: 'middle', lineJoin: 'round' });
    // Levels that stay when curves are thinned out have their labels first.
    const order = this.levels.map((_, l) => l).sort((a, b) => this.levels[b].rank - this.levels[a].rank);
    for (const l of order.filter(surface.isLevelShown)) this.#place(context, l);
    for (const { text, x, y } of this.drawn) {
      Object.assign(context, { lineWidth: kHalo, strokeStyle: look.halo, fillStyle: look.ink });
      context.strokeText(text, x, y);
      context.fillText(text, x, y);
    }
  }

  /** Its last place comes first, so that a label does not jump about. */
  #place(context, l) {
    const { text, places, rank } = this.levels[l];
    const width = context.measureText(text).width;
    const before = this.kept.get(l);
    for (const place of before ? [before, ...places] : places) {
      const spot = this.#spotAt(place.at);
      const apart = place.gap * this.surface.pixelsAt(place.at);
      if (!spot || !(rank * apart > kLeastGap) || !this.#isFree(spot, width)) continue;
      if (!this.surface.sees(place.at)) continue;
      this.kept.set(l, place);
      this.drawn.push({ text, ...spot, width });
      return;
    }
  }

  #spotAt(place) {
    const { surface } = this;
    const at = place.clone().project(surface.camera);
    if (at.z > 1 || Math.abs(at.x) > 0.98 || Math.abs(at.y) > 0.97) return null;
    return { x: ((at.x + 1) / 2) * surface.width, y: ((1 - at.y) / 2) * surface.height };
  }

  #isFree({ x, y }, width) {
    return this.drawn.every(
      (other) => Math.abs(x - other.x) > (width + other.width) / 2 + kRoom || Math.abs(y - other.y) > kHeight + kRoom / 2,
    );
  }
}

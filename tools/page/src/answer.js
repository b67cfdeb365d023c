// What was tapped or clicked: a place's value, its curve, or the way between two places.
import { Vector3 } from 'three';
import { lengthOf, nearestCurve } from './curves.js';
import { readable, stepIn, withUnit } from './levels.js';

const kReach = { mouse: 8, touch: 20 }; // pixels from a curve

const kMiddle = -0.05; // between the two places of an answer on a phone that lies, in (-1, 1)

const byId = (id) => document.getElementById(id);

/** Copies text, also where the browser keeps its clipboard from local files. */
export async function copyText(text) {
  try {
    await navigator.clipboard.writeText(text);
  } catch {
    const area = document.createElement('textarea');
    area.value = text;
    document.body.append(area);
    area.select();
    document.execCommand('copy');
    area.remove();
  }
}

export class Answer {
  /** page: a Page. */
  constructor(page) {
    this.page = page;
    this.measured = [];
    this.isMeasuring = false;
    byId('measure').addEventListener('click', () => this.measure(!this.isMeasuring));
  }

  /** The curve within reach of a place that was hit, by number, or null. */
  curveAt(hit, isTouch) {
    const { surface } = this.page;
    if (!surface.shown.curves) return null;
    const reach = kReach[isTouch ? 'touch' : 'mouse'] / surface.pixelsAt(new Vector3(...hit.local));
    return nearestCurve(surface.segments, hit.local, reach, surface.isLevelShown);
  }

  /** "Level 0.25, closed, 12.3 long". */
  curveText(curve) {
    const { surface } = this.page;
    const { levels, closed } = surface.traced;
    const length = lengthOf(surface.traced, curve) * surface.place.radius;
    return `Level ${this.page.levelText(levels[curve])}, ${closed[curve] ? 'closed' : 'open'}, ${readable(length)} long`;
  }

  /** A place on the mesh was tapped, or none. */
  tapped(hit, isTouch) {
    if (!hit) return this.isMeasuring ? null : this.close();
    this.#giveWay(hit);
    if (this.isMeasuring) return this.#measureTo(hit);
    const curve = this.curveAt(hit, isTouch);
    this.page.surface.choose(curve);
    this.page.surface.setMeasured([hit.local]); // where it was
    const { page } = this;
    const lines = [
      `Value ${page.valueText(hit.value)}`,
      ...(curve === null ? [] : [this.curveText(curve)]),
      `at ${page.placeText(hit.position)}`,
    ];
    const level = curve === null ? null : page.levels[page.surface.traced.levels[curve]];
    this.#show(lines, [
      ['Add level here', () => page.addLevel(hit.value)],
      ...(curve === null ? [] : [['Hide level', () => (this.close(), page.hideLevel(level, true))]]),
    ]);
  }

  /** On phones: in place of a panel, and on the side where what was asked for is not. */
  #giveWay({ local }) {
    const { panels, surface } = this.page;
    if (!panels.areTabs) return;
    panels.open(null);
    surface.camera.updateMatrixWorld();
    const isLeft = new Vector3(...local).project(surface.camera).x < kMiddle;
    document.documentElement.classList.toggle('answer-aside', isLeft);
  }

  measure(isOn) {
    this.isMeasuring = isOn;
    if (this.page.panels.areTabs) this.page.panels.open(null);
    document.documentElement.classList.toggle('measuring', isOn);
    byId('measure').setAttribute('aria-pressed', String(isOn));
    this.#setMeasured([]);
    this.page.surface.choose(null);
    if (isOn) this.#show(['Measure', 'Point at two places'], []);
    else this.close();
  }

  #measureTo(hit) {
    this.#setMeasured(this.measured.length === 1 ? [this.measured[0], hit] : [hit]);
    const { page } = this;
    const [a, b] = this.measured;
    if (!b) return this.#show([`From ${page.valueText(a.value)}`, `at ${page.placeText(a.position)}`, 'Point at the other place'], []);
    const distance = Math.hypot(...a.position.map((c, k) => c - b.position[k]));
    const span = page.surface.range.high - page.surface.range.low;
    const difference = withUnit(readable(b.value - a.value, stepIn(span)), page.facts.unit);
    this.#show([
      `Distance ${readable(distance)}`,
      `Difference ${difference}`,
      `from ${page.valueText(a.value)} at ${page.placeText(a.position)}`,
      `to ${page.valueText(b.value)} at ${page.placeText(b.position)}`,
    ], []);
  }

  #setMeasured(hits) {
    this.measured = hits;
    this.page.surface.setMeasured(hits.map(({ local }) => local));
  }

  /** The first line stands out; buttons: [text, action]. */
  #show([first, ...others], buttons) {
    const strong = document.createElement('b');
    strong.textContent = first;
    byId('answer-text').replaceChildren(strong, others.map((line) => `\n${line}`).join(''));
    const text = [first, ...others].join('\n');
    const copy = ['Copy', async () => (await copyText(text), this.page.announce('Copied'))];
    const close = ['Close', () => (this.isMeasuring ? this.measure(false) : this.close())];
    byId('answer-buttons').replaceChildren(
      ...[...buttons, copy, close].map(([label, action]) => {
        const button = document.createElement('button');
        button.type = 'button';
        button.textContent = label;
        button.addEventListener('click', action);
        return button;
      }),
    );
    byId('answer').hidden = false;
    this.page.announce([first, ...others].join(', '));
  }

  close() {
    byId('answer').hidden = true;
    this.page.surface.setMeasured([]);
    this.page.surface.choose(null);
  }
}

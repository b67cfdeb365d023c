// The page round the scene: facts, scale, controls, reading, themes.
import { evenLevels, kMostLevels, readable } from './levels.js';
import { Legend } from './legend.js';
import { Navigation } from './navigation.js';
import { pictureOf, savePicture } from './picture.js';
import { SurfaceScene } from './surface.js';

const kKeys = [
  ['Arrows', 'turn'],
  ['Shift + arrows', 'move'],
  ['+ \u2212', 'zoom'],
  ['0', 'reset the view'],
  ['[ ]', 'fewer, more levels'],
  ['H C E F', 'heat map, curves, edges, fixed'],
  ['V', 'value in the middle'],
  ['T', 'theme'],
];

const kToggles = { h: 'heatMap', c: 'curves', e: 'edges', f: 'fixed' };
const kNarrow = 700; // pixels; below, the scale lies on the picture
const kThemes = ['auto', 'light', 'dark'];

const byId = (id) => document.getElementById(id);
const counted = (count, one, many) =>
  `${count.toLocaleString('en')} ${count === 1 ? one : many}`;

export class Page {
  /**
   * facts: {name, vertices, triangles, conditions: [{text, value, vertices}], levels: [...],
   * toward: [x, y, z] or null}; data: what decodeMesh() returns.
   */
  constructor(facts, data) {
    this.facts = facts;
    this.data = data;
    this.canvas = byId('canvas');
    this.surface = new SurfaceScene(this.canvas, data);
    this.legend = new Legend(byId('legend'), data.colours);
    this.theme = 'auto';
    this.fitWindow();
    this.navigation = new Navigation(this.surface, facts);
    this.#describe();
    this.#connectControls();
    this.#connectPointer();
    this.#followWindow();
    this.#applyTheme();
    this.setField(data.field, facts.levels);
  }

  /** Another field, cut at other levels or at the ones before. */
  setField(field, levels = this.levels) {
    this.surface.setField(field, levels);
    this.legend.setRange(this.surface.range);
    this.#showLevels(levels);
  }

  setLevels(levels) {
    this.surface.setLevels(levels);
    this.#showLevels(levels);
  }

  #showLevels(levels) {
    this.levels = levels;
    this.legend.setLevels(levels, this.surface.shown.curves);
    byId('level-slider').value = levels.length;
    byId('level-count').value = levels.length;
  }

  /** `count` even levels, whatever was shown before. */
  setLevelCount(count) {
    const whole = Math.min(kMostLevels, Math.max(0, Math.round(count) || 0));
    const { low, high } = this.surface.range;
    this.setLevels(evenLevels(low, high, whole));
  }

  /** What "Save picture" saves, as a canvas. */
  picture() {
    return pictureOf(this);
  }

  show(what) {
    this.surface.show(what);
    for (const [name, shown] of Object.entries(this.surface.shown))
      byId(`show-${name}`).checked = shown;
    this.legend.setLevels(this.levels, this.surface.shown.curves);
  }

  #describe() {
    const { name, vertices, triangles, conditions } = this.facts;
    const head = byId('facts');
    head.querySelector('h1').textContent = name;
    head.querySelector('p').textContent =
      `${counted(vertices, 'vertex', 'vertices')}, ${counted(triangles, 'triangle', 'triangles')}`;
    head.querySelector('ul').replaceChildren(
      ...conditions.map((condition, number) => this.conditionItem(condition, number)),
    );
    byId('key-list').replaceChildren(
      ...kKeys.flatMap(([key, meaning]) => {
        const term = document.createElement('dt');
        term.textContent = key;
        const description = document.createElement('dd');
        description.textContent = meaning;
        return [term, description];
      }),
    );
  }

  /** A file's vertices have a value each: it stands there without one. */
  conditionItem({ text, value, vertices }) {
    const item = document.createElement('li');
    const swatch = document.createElement('i');
    swatch.className = 'swatch';
    if (value !== undefined)
      swatch.style.background = this.surface.colourOf(value).getStyle();
    const code = document.createElement('code');
    code.textContent = value === undefined ? text : `${text} = ${readable(value)}`;
    const count = document.createElement('span');
    count.className = 'count';
    count.textContent = counted(vertices, 'vertex', 'vertices');
    item.append(swatch, code, count);
    return item;
  }

  #connectControls() {
    const slider = byId('level-slider');
    const count = byId('level-count');
    slider.max = Math.max(40, this.facts.levels.length);
    count.max = kMostLevels;
    slider.addEventListener('input', () => this.setLevelCount(slider.valueAsNumber));
    count.addEventListener('change', () => this.setLevelCount(count.valueAsNumber));
    for (const name of Object.values(kToggles))
      byId(`show-${name}`).addEventListener('change', (event) =>
        this.show({ [name]: event.target.checked }),
      );
    this.#setToggles();
    byId('reset').addEventListener('click', () => this.navigation.reset());
    byId('theme').addEventListener('click', () => this.nextTheme());
    byId('save').addEventListener('click', () => savePicture(this));
    byId('keys').addEventListener('click', () => this.#toggleKeys());
    document.addEventListener('keydown', (event) => this.#key(event));
  }

  #setToggles() {
    for (const [name, shown] of Object.entries(this.surface.shown))
      byId(`show-${name}`).checked = shown;
  }

  #toggleKeys() {
    const list = byId('key-list');
    list.hidden = !list.hidden;
    byId('keys').setAttribute('aria-expanded', String(!list.hidden));
  }

  #key(event) {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const onControl = event.target.closest?.('input, button');
    if (!onControl && this.navigation.key(event)) {
      this.#hideReading();
      event.preventDefault();
      return;
    }
    if (onControl?.type === 'number') return;
    const key = event.key.toLowerCase();
    if (key in kToggles) this.show({ [kToggles[key]]: !this.surface.shown[kToggles[key]] });
    else if (key === '[') this.setLevelCount(this.levels.length - 1);
    else if (key === ']') this.setLevelCount(this.levels.length + 1);
    else if (key === 't') this.nextTheme();
    else if (key === 'v') this.#readMiddle();
  }

  #connectPointer() {
    let last = null;
    const read = () => {
      if (last) this.#read(last.x, last.y);
      last = null;
    };
    this.canvas.addEventListener('pointermove', (event) => {
      if (event.buttons) return this.#hideReading();
      if (!last) requestAnimationFrame(read);
      last = { x: event.offsetX, y: event.offsetY };
    });
    this.canvas.addEventListener('pointerdown', () => this.canvas.focus({ preventScroll: true }));
    for (const name of ['pointerleave', 'wheel'])
      this.canvas.addEventListener(name, () => ((last = null), this.#hideReading()), {
        passive: true,
      });
  }

  #readableValue(value) {
    const { low, high } = this.surface.range;
    return readable(value, high - low);
  }

  /** Shows the value at a point of the canvas, if the mesh is there. */
  #read(x, y) {
    const hit = this.surface.pick(x, y);
    this.legend.point(hit && hit.value);
    const reading = byId('reading');
    reading.hidden = !hit;
    if (!hit) return null;
    const value = document.createElement('b');
    value.textContent = this.#readableValue(hit.value);
    const place = document.createElement('span');
    place.textContent = hit.position
      .map((c) => readable(c, this.surface.place.radius))
      .join(', ');
    reading.replaceChildren(value, place);
    const { offsetWidth, offsetHeight } = reading;
    const left = x + 18 + offsetWidth > window.innerWidth ? x - 18 - offsetWidth : x + 18;
    const top = Math.min(Math.max(8, y - offsetHeight / 2), window.innerHeight - offsetHeight - 8);
    reading.style.left = `${left}px`;
    reading.style.top = `${top}px`;
    return hit;
  }

  #readMiddle() {
    const hit = this.#read(this.canvas.clientWidth / 2, this.canvas.clientHeight / 2);
    byId('announcement').textContent = hit
      ? `Value in the middle: ${this.#readableValue(hit.value)}`
      : 'Nothing lies in the middle of the view';
  }

  #hideReading() {
    byId('reading').hidden = true;
    this.legend.point(null);
  }

  /** The sides of the window that cards cover; on narrow ones they lie on the picture. */
  covered() {
    if (window.innerWidth <= kNarrow) return {};
    return { right: window.innerWidth - byId('scale-card').getBoundingClientRect().left };
  }

  fitWindow() {
    this.surface.setSize(window.innerWidth, window.innerHeight, this.covered());
    this.navigation?.resized();
  }

  #followWindow() {
    window.addEventListener('resize', () => this.fitWindow());
    this.darkWanted = window.matchMedia('(prefers-color-scheme: dark)');
    this.darkWanted.addEventListener('change', () => this.#applyTheme());
  }

  nextTheme() {
    this.theme = kThemes[(kThemes.indexOf(this.theme) + 1) % kThemes.length];
    this.#applyTheme();
  }

  #applyTheme() {
    const dark = this.theme === 'dark' || (this.theme === 'auto' && this.darkWanted.matches);
    document.documentElement.dataset.theme = dark ? 'dark' : 'light';
    byId('theme').textContent = `Theme: ${this.theme}`;
    this.surface.setTheme(dark ? 'dark' : 'light');
  }
}

// The page round the scene: facts, scale, controls, reading, themes.
import { followAddress, linkTo } from './address.js';
import { Answer, copyText } from './answer.js';
import { FieldChoice } from './field_choice.js';
import { curvesObj, drawingSvg, fieldCsv, offer } from './files.js';
import { freeRectangles } from './fit.js';
import { fillLevelList } from './level_list.js';
import { evenLevels, kMostLevels, levelTexts, readable, stepIn, withUnit } from './levels.js';
import { Legend } from './legend.js';
import { Navigation } from './navigation.js';
import { Panels } from './panels.js';
import { followPrinting, pictureOf } from './picture.js';
import { followPointer } from './pointer.js';
import { paintStill } from './still.js';
import { SurfaceScene } from './surface.js';
import { ValueLabels } from './value_labels.js';

const kKeys = [
  ['Arrows', 'turn'],
  ['Shift + arrows', 'move'],
  ['+ \u2212', 'zoom'],
  ['0', 'reset the view'],
  ['1 2 3 4 5 6', 'front, back, left, right, top, iso'],
  ['[ ]', 'fewer, more levels'],
  ['H C N E F', 'heat map, curves, numbers on them, edges, fixed'],
  ['V', 'value in the middle'],
  ['Enter', 'answer for the middle'],
  ['A', 'add a level at the pointer, or in the middle'],
  ['M', 'measure'],
  ['P', 'panels'],
  ['T', 'theme'],
  ['Esc', 'close the answer'],
];

const kToggles = { h: 'heatMap', c: 'curves', n: 'values', e: 'edges', f: 'fixed' };
const kGiven = 1e-11; // of a value: its digits as the command line had them
const kThemes = ['auto', 'light', 'dark'];
const kNoWebGl = 'This browser has no WebGL 2: the picture is drawn without it, plainly and slowly.';

const byId = (id) => document.getElementById(id);
const counted = (count, one, many) => `${count.toLocaleString('en')} ${count === 1 ? one : many}`;

export class Page {
  /**
   * facts: {name, vertices, triangles, conditions: [{text, value, vertices}], levels: [...],
   * toward: [x, y, z] or null, up: 'x', 'y' or 'z', unit: '' or a text, range: [low, high] of the
   * colours or null, fields: [{name, levels}] of several fields}; data: what decodeMesh() returns.
   */
  constructor(facts, data) {
    this.facts = facts;
    this.data = data;
    this.canvas = byId('canvas');
    this.theme = 'auto';
    this.changed = () => {};
    this.surface = new SurfaceScene(this.canvas, data, paintStill, facts.range);
    this.labels = new ValueLabels(byId('labels'), this.surface);
    this.surface.afterDraw = () => this.labels.draw();
    this.legend = new Legend(byId('legend'), data.colours, facts.unit, () => this.fitWindow());
    this.setField(data.field, facts.levels);
    this.#describe();
    this.fieldChoice = new FieldChoice(this);
    this.panels = new Panels(() => this.fitWindow());
    this.navigation = new Navigation(this.surface, facts, () => this.changed());
    this.answer = new Answer(this);
    this.#connectControls();
    this.#connectPointer();
    this.#followWindow();
    this.#applyTheme();
    followPrinting(this);
    if (!this.surface.renderer) this.#saySo(kNoWebGl);
    // A live page has more state, which it has not got yet.
    queueMicrotask(() => (this.changed = followAddress(this)));
  }

  /** Another field, cut at other levels or at the ones before. */
  setField(field, levels = this.levels) {
    this.surface.setField(field, levels);
    this.legend.setRange(this.surface.colourRange, this.surface.range);
    this.#showLevels(levels);
  }

  /** Levels in increasing order. */
  setLevels(levels) {
    this.surface.setLevels(levels);
    this.#showLevels(levels);
  }

  #showLevels(levels) {
    this.levels = levels;
    this.levelTexts = levelTexts(levels);
    byId('level-slider').max = Math.max(40, levels.length, this.facts.levels.length);
    byId('level-slider').value = levels.length;
    byId('level-count').value = levels.length;
    this.labels.prepare();
    this.#showHidden();
  }

  #showHidden() {
    const shown = this.levels.filter((_, l) => this.surface.isLevelShown(l));
    this.legend.setLevels(this.surface.shown.curves ? shown : []);
    if (byId('level-details').open) fillLevelList(byId('level-list'), this);
    this.changed();
  }

  /** `count` even levels, whatever was shown before. */
  setLevelCount(count) {
    const whole = Math.min(kMostLevels, Math.max(0, Math.round(count) || 0));
    const { low, high } = this.surface.range;
    this.setLevels(evenLevels(low, high, whole));
  }

  addLevel(value) {
    if (this.levels.includes(value)) return;
    this.setLevels([...this.levels, value].sort((a, b) => a - b));
    this.announce(`Level ${this.valueText(value)} added`);
  }

  hideLevel(level, isHidden) {
    const hidden = new Set(this.surface.hidden);
    if (isHidden) hidden.add(level);
    else hidden.delete(level);
    this.setHidden(hidden);
  }

  /** Values of levels that are not drawn. */
  setHidden(levels) {
    this.surface.setHidden(new Set(levels));
    this.#showHidden();
  }

  /** What "Save picture" saves, as a canvas. */
  picture() {
    return pictureOf(this);
  }

  show(what) {
    this.surface.show(what);
    this.#setToggles();
    this.#showHidden();
  }

  /** What a page with more on it keeps in its address besides, as {name: text}, and takes from there. */
  ownState() {
    return this.fieldChoice.state();
  }

  takeOwnState(state) {
    this.fieldChoice.take(state);
  }

  levelText = (l) => withUnit(this.levelTexts[l], this.facts.unit);

  valueText(value) {
    const { low, high } = this.surface.range;
    return withUnit(readable(value, stepIn(high - low)), this.facts.unit);
  }

  placeText = (position) => position.map((c) => readable(c, stepIn(this.surface.place.radius))).join(', ');

  /** For those who listen. */
  announce(text) {
    byId('announcement').textContent = text;
  }

  #describe() {
    const { name, vertices, triangles, conditions } = this.facts;
    document.querySelector('h1').textContent = name;
    byId('counts').textContent = `${counted(vertices, 'vertex', 'vertices')}, ${counted(triangles, 'triangle', 'triangles')}`;
    this.listConditions(conditions);
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

  listConditions(conditions) {
    this.items = conditions.map((condition, number) => this.conditionItem(condition, number));
    byId('conditions').replaceChildren(...this.items);
  }

  /** A file's vertices have a value each: it stands there without one. */
  conditionItem({ text, value, vertices }) {
    const item = document.createElement('li');
    const swatch = document.createElement('i');
    swatch.className = 'swatch';
    if (value !== undefined) swatch.style.background = this.surface.colourOf(value).getStyle();
    const code = document.createElement('code');
    code.textContent = value === undefined ? text : `${text} = ${withUnit(readable(value, kGiven * Math.abs(value)), this.facts.unit)}`;
    const count = document.createElement('span');
    count.className = 'count';
    count.textContent = counted(vertices, 'vertex', 'vertices');
    item.append(swatch, code, count);
    return item;
  }

  #connectControls() {
    const slider = byId('level-slider');
    const count = byId('level-count');
    count.max = kMostLevels;
    slider.addEventListener('input', () => this.setLevelCount(slider.valueAsNumber));
    count.addEventListener('change', () => this.setLevelCount(count.valueAsNumber));
    for (const name of Object.values(kToggles))
      byId(`show-${name}`).addEventListener('change', (event) => this.show({ [name]: event.target.checked }));
    this.#setToggles();
    byId('level-details').addEventListener('toggle', () => (this.#showHidden(), this.fitWindow()));
    for (const button of document.querySelectorAll('#views button'))
      button.addEventListener('click', () => this.navigation.lookFrom(button.dataset.view));
    const clicks = {
      reset: () => this.navigation.reset(),
      theme: () => this.nextTheme(),
      keys: () => this.#toggleKeys(),
      save: async () => offer(this, 'png', (await this.picture()).toDataURL('image/png')),
      'save-svg': () => offer(this, 'svg', drawingSvg(this), 'image/svg+xml'),
      'save-obj': () => offer(this, 'curves.obj', curvesObj(this), 'text/plain'),
      'save-csv': () => offer(this, 'csv', fieldCsv(this), 'text/csv'),
      'copy-link': async () => (await copyText(linkTo(this)), this.announce('Link copied')),
    };
    for (const [id, click] of Object.entries(clicks)) byId(id).addEventListener('click', click);
    byId('curves').addEventListener('submit', (event) => event.preventDefault());
    document.addEventListener('keydown', (event) => this.#key(event));
    // Where a frame shows what has the focus: for those who use keys.
    const input = (kind) => () => (document.documentElement.dataset.input = kind);
    document.addEventListener('keydown', input('keys'), true);
    document.addEventListener('pointerdown', input('pointer'), true);
  }

  #setToggles() {
    for (const [name, shown] of Object.entries(this.surface.shown)) byId(`show-${name}`).checked = shown;
  }

  #toggleKeys() {
    const list = byId('key-list');
    list.hidden = !list.hidden;
    byId('keys').setAttribute('aria-expanded', String(!list.hidden));
    this.fitWindow();
  }

  #key(event) {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const onControl = event.target.closest?.('input, button, summary');
    if (!onControl && this.navigation.key(event)) {
      this.#hideReading();
      event.preventDefault();
      return;
    }
    if (onControl?.type === 'number') return;
    const key = event.key.toLowerCase();
    const action = {
      '[': () => this.setLevelCount(this.levels.length - 1),
      ']': () => this.setLevelCount(this.levels.length + 1),
      t: () => this.nextTheme(),
      v: () => this.#readMiddle(),
      a: () => this.#addLevelHere(),
      m: () => this.answer.measure(!this.answer.isMeasuring),
      p: () => this.panels.fold(),
      escape: () => (this.answer.isMeasuring ? this.answer.measure(false) : this.answer.close()),
      enter: () => onControl || this.answer.tapped(this.#middle(), false),
    }[key];
    if (key in kToggles) this.show({ [kToggles[key]]: !this.surface.shown[kToggles[key]] });
    else action?.();
  }

  #connectPointer() {
    followPointer(this.canvas, {
      hover: (x, y, isTouch) => this.#read(x, y, isTouch),
      away: () => this.#hideReading(),
      tap: (x, y, isTouch) => {
        const hit = this.surface.pick(x, y);
        this.answer.tapped(hit, isTouch);
        // A finger hides what would stand beside it: the answer says it all.
        if (isTouch) this.#hideReading();
        if (isTouch) this.legend.point(hit && hit.value);
      },
      suspend: (isSuspended) => this.navigation.suspend(isSuspended),
    });
    this.canvas.addEventListener('pointerdown', () => this.canvas.focus({ preventScroll: true }));
  }

  /** Shows the value at a point of the canvas, if the mesh is there. */
  #read(x, y, isTouch = false) {
    const hit = this.surface.pick(x, y);
    this.hit = hit;
    this.legend.point(hit && hit.value);
    const reading = byId('reading');
    reading.hidden = !hit;
    if (!hit) return null;
    const value = document.createElement('b');
    value.textContent = this.valueText(hit.value);
    const lines = [this.placeText(hit.position)];
    const curve = this.answer.curveAt(hit, isTouch);
    if (curve !== null) lines.push(this.answer.curveText(curve));
    const spans = lines.map((line) => {
      const span = document.createElement('span');
      span.textContent = line;
      return span;
    });
    reading.replaceChildren(value, ...spans);
    this.#putReading(reading, x, y, isTouch);
    return hit;
  }

  /** Beside a mouse, above a finger, and always in the window. */
  #putReading(reading, x, y, isTouch) {
    const { offsetWidth, offsetHeight } = reading;
    const within = (place, size, room) => Math.min(Math.max(8, place), Math.max(8, room - size - 8));
    const beside = x + 18 + offsetWidth > window.innerWidth - 8 ? x - 18 - offsetWidth : x + 18;
    const left = isTouch ? x - offsetWidth / 2 : beside;
    const top = isTouch ? y - offsetHeight - 34 : y - offsetHeight / 2;
    reading.style.left = `${within(left, offsetWidth, window.innerWidth)}px`;
    reading.style.top = `${within(top, offsetHeight, window.innerHeight)}px`;
  }

  /** Of what is free of the window, where the mesh is. */
  get #middlePlace() {
    const { left, right, top, bottom } = this.surface.rectangle;
    return [(left + right) / 2, (top + bottom) / 2];
  }

  #middle() {
    return this.surface.pick(...this.#middlePlace);
  }

  #readMiddle() {
    const hit = this.#read(...this.#middlePlace);
    this.announce(hit ? `Value in the middle: ${this.valueText(hit.value)}` : 'Nothing lies in the middle of the view');
  }

  #addLevelHere() {
    const hit = byId('reading').hidden ? this.#middle() : this.hit;
    if (hit) this.addLevel(hit.value);
  }

  #hideReading() {
    byId('reading').hidden = true;
    this.legend.point(null);
  }

  fitWindow() {
    if (!this.panels) return;
    const { innerWidth, innerHeight } = window;
    this.surface.setSize(innerWidth, innerHeight, freeRectangles(innerWidth, innerHeight, this.panels.covered()));
    this.navigation?.resized();
  }

  #followWindow() {
    window.addEventListener('resize', () => this.fitWindow());
    this.darkWanted = window.matchMedia('(prefers-color-scheme: dark)');
    this.darkWanted.addEventListener('change', () => this.#applyTheme());
    this.fitWindow();
  }

  nextTheme() {
    this.setTheme(kThemes[(kThemes.indexOf(this.theme) + 1) % kThemes.length]);
  }

  /** 'auto', 'light' or 'dark'. */
  setTheme(theme) {
    this.theme = theme;
    this.#applyTheme();
    this.changed();
  }

  #applyTheme() {
    const dark = this.theme === 'dark' || (this.theme === 'auto' && this.darkWanted.matches);
    document.documentElement.dataset.theme = dark ? 'dark' : 'light';
    byId('theme').textContent = `Theme: ${this.theme}`;
    this.surface.setTheme(dark ? 'dark' : 'light');
  }

  /** What does not end the page. */
  #saySo(text) {
    const note = byId('failure');
    note.textContent = text;
    note.classList.add('note');
    note.hidden = false;
  }
}

// Entry of the live page: the view page, with the library in it and a slider for every
// condition. Each move solves again with the stored factorisation and cuts the curves again. A
// switch builds the system anew, with robust construction or without.
import makeLibrary from 'qelm-library';
import { levelsInSteps, rangeOf } from './levels.js';
import { MeshSystem } from './library.js';
import { Page } from './page.js';
import { runPage } from './start.js';

const kSliderSteps = 240;
const kMostUndone = 200;

const byId = (id) => document.getElementById(id);

/** From where to where a slider goes: half as far again as the prescribed values do. */
function reachOf(conditions) {
  const values = conditions.map(({ value }) => value).filter((value) => value !== undefined);
  const low = Math.min(...values);
  const high = Math.max(...values);
  const span = high - low || Math.abs(high) || 1;
  return { low: low - span / 2, high: high + span / 2 };
}

/** Levels whose steps are even go on in these steps when the range grows; others stay. */
function ruleOf(levels) {
  const step = (levels.at(-1) - levels[0]) / (levels.length - 1);
  const isEven = levels.every((l, k) => Math.abs(l - levels[0] - k * step) < 1e-6 * step);
  if (levels.length > 1 && isEven) return (low, high) => levelsInSteps(levels[0], step, low, high);
  return () => levels;
}

class LivePage extends Page {
  constructor(facts, data, library) {
    super(facts, data);
    this.values = data.field.slice();
    this.prescribed = facts.conditions.map(({ value }) => value);
    this.current = [...this.prescribed]; // one for each condition, undefined for a file
    this.undone = []; // what #kept() says before each move, the last one at the end
    this.library = library;
    document.documentElement.classList.add('live');
    this.times = {};
    this.rule = ruleOf(facts.levels);
    this.#addSwitch();
    this.#addButtons();
    this.#buildFirst();
    this.solve();
    this.fitWindow();
  }

  /**
   * Builds the system with robust construction or without. Throws Error and keeps the system
   * that was there when the mesh has no field that way.
   */
  #build(isRobust) {
    const { positions, triangles, fixedBy, load } = this.data;
    const tags = Int32Array.from(fixedBy, (condition) => (condition > 0 ? 1 : 0));
    const began = performance.now();
    const system = new MeshSystem(this.library, positions, triangles, tags, { robust: isRobust });
    this.times.construct = performance.now() - began;
    if (!system.solve(this.values, load).every(Number.isFinite)) {
      system.free();
      throw new Error('the field is not finite');
    }
    this.system?.free();
    this.system = system;
    this.isRobust = isRobust;
    this.toggle.checked = isRobust;
  }

  /** Without robust construction, unless the mesh needs it. */
  #buildFirst() {
    try {
      this.#build(false);
    } catch {
      this.#build(true);
    }
  }

  /** Switches robust construction on or off; draws soon after. Values and conditions stay. */
  setRobust(isRobust) {
    if (isRobust === this.isRobust) return;
    this.before ??= this.#kept();
    try {
      this.#build(isRobust);
      this.awaited ??= requestAnimationFrame(() => this.solve());
    } catch (error) {
      this.toggle.checked = this.isRobust;
      const text = `Robust stays ${this.isRobust ? 'on' : 'off'}: ${error.message}.`;
      byId('times').textContent = text;
      this.announce(text);
    }
  }

  /** What a move changes and undoing brings back. */
  #kept() {
    return { values: [...this.current], isRobust: this.isRobust };
  }

  /** Holds the vertices of a condition, by number, at another value; draws soon after. */
  prescribe(number, value) {
    this.before ??= this.#kept();
    this.current[number] = value;
    this.data.fixedBy.forEach((condition, v) => {
      if (condition === number + 1) this.values[v] = value;
    });
    this.sliders[number]?.show(value);
    this.awaited ??= requestAnimationFrame(() => this.solve());
  }

  /** A move has ended: what was before it can come back. */
  moved() {
    const { values, isRobust } = this.before ?? this.#kept();
    const isMoved = isRobust !== this.isRobust || values.some((value, k) => value !== this.current[k]);
    if (isMoved) this.undone.push({ values, isRobust });
    if (this.undone.length > kMostUndone) this.undone.shift();
    this.before = undefined;
    byId('undo').disabled = this.undone.length === 0;
    this.changed();
  }

  undo() {
    const before = this.undone.pop();
    if (before) {
      this.#take(before.values);
      this.setRobust(before.isRobust);
    }
    this.before = undefined;
    this.moved();
  }

  /** All values as the command line had them; that can be undone. */
  resetValues() {
    this.#take(this.prescribed);
    this.moved();
  }

  #take(values) {
    values.forEach((value, k) => value !== undefined && value !== this.current[k] && this.prescribe(k, value));
  }

  solve() {
    cancelAnimationFrame(this.awaited);
    this.awaited = undefined;
    const began = performance.now();
    const field = this.system.solve(this.values, this.data.load);
    const solved = performance.now();
    const { low, high } = rangeOf(field);
    this.setField(field, this.rule(low, high));
    this.times.solve = solved - began;
    this.times.cut = this.surface.cutTime;
    this.#sayTimes();
  }

  setLevels(levels) {
    super.setLevels(levels);
    this.rule = ruleOf(levels);
  }

  ownState() {
    const isMoved = this.current?.some((value, k) => value !== this.prescribed[k]);
    const values = isMoved ? { values: this.current.map((value) => value ?? '').join() } : {};
    return { robust: this.isRobust ? 1 : 0, ...values };
  }

  takeOwnState(state) {
    const values = (state.get('values') ?? '').split(',');
    if (values.length === this.current.length)
      this.#take(values.map((text) => (text !== '' && Number.isFinite(Number(text)) ? Number(text) : undefined)));
    if (state.has('robust')) this.setRobust(state.get('robust') === '1');
    if (this.awaited === undefined) return;
    this.solve(); // what comes after it in the address is about this field
    this.moved();
  }

  #sayTimes() {
    const said = (time) => `${time.toFixed(1)} ms`;
    const { solve, cut } = this.times;
    byId('times').textContent = `Solved in ${said(solve)}, cut in ${said(cut)}`;
  }

  conditionItem(condition, number) {
    this.sliders ??= [];
    const item = super.conditionItem({ ...condition, value: undefined }, number);
    if (condition.value === undefined) return item;
    const { low, high } = reachOf(this.facts.conditions);
    const slider = document.createElement('input');
    const box = document.createElement('input');
    slider.type = 'range';
    slider.min = low;
    slider.max = high;
    slider.step = (high - low) / kSliderSteps;
    slider.ariaLabel = `Value of ${condition.text}`;
    box.type = 'number';
    box.step = 'any';
    box.ariaLabel = `Value of ${condition.text}, as a number`;
    const show = (value) => {
      slider.value = value;
      box.value = Number(value.toPrecision(6));
      item.querySelector('.swatch').style.background = this.surface.colourOf(value).getStyle();
    };
    slider.addEventListener('input', () => this.prescribe(number, slider.valueAsNumber));
    slider.addEventListener('change', () => this.moved());
    box.addEventListener('change', () => {
      if (Number.isFinite(box.valueAsNumber)) this.prescribe(number, box.valueAsNumber);
      else show(this.current[number]);
      this.moved();
    });
    this.sliders[number] = { show, slider, box };
    show(condition.value);
    item.classList.add('moved');
    item.append(box, slider);
    return item;
  }

  /** Swatches follow the scale, which changes with every field. */
  setField(field, levels) {
    super.setField(field, levels);
    this.sliders?.forEach(({ show }, k) => show(this.current?.[k] ?? this.facts.conditions[k].value));
  }

  #addSwitch() {
    const construction = document.createElement('fieldset');
    construction.id = 'construction';
    construction.className = 'toggles';
    construction.innerHTML =
      '<legend class="unseen">Construction</legend>' +
      '<label><input type="checkbox" role="switch" id="robust" aria-describedby="robust-use"><span>Robust</span></label>' +
      '<p id="robust-use">for slivers and other bad triangles</p>';
    byId('values').append(construction);
    this.toggle = byId('robust');
    this.toggle.addEventListener('change', () => {
      this.setRobust(this.toggle.checked);
      this.moved();
    });
  }

  #addButtons() {
    const button = (id, text, click) => {
      const made = document.createElement('button');
      Object.assign(made, { type: 'button', id, textContent: text });
      made.addEventListener('click', click);
      return made;
    };
    const buttons = document.createElement('div');
    buttons.className = 'buttons';
    buttons.append(
      button('undo', 'Undo', () => this.undo()),
      button('reset-values', 'Reset to prescribed', () => this.resetValues()),
    );
    buttons.firstChild.disabled = true;
    const times = document.createElement('p');
    times.id = 'times';
    byId('values').append(buttons, times);
    document.addEventListener('keydown', (event) => {
      const isUndo = event.key.toLowerCase() === 'z' && (event.ctrlKey || event.metaKey) && !event.shiftKey;
      if (!isUndo || event.target.type === 'number') return;
      event.preventDefault();
      this.undo();
    });
  }
}

runPage(async (facts, data) => new LivePage(facts, data, await makeLibrary()));

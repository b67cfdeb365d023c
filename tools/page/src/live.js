// Entry of the live page: the view page, with the library in it and a slider for every
// condition. Each move solves again with the stored factorisation and cuts the curves again.
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
    this.undone = []; // values before each move, the last one at the end
    const tags = Int32Array.from(data.fixedBy, (condition) => (condition > 0 ? 1 : 0));
    const began = performance.now();
    this.system = new MeshSystem(library, data.positions, data.triangles, tags);
    this.times = { construct: performance.now() - began };
    this.rule = ruleOf(facts.levels);
    this.#addButtons();
    this.fitWindow();
    this.solve();
  }

  /** Holds the vertices of a condition, by number, at another value; draws soon after. */
  prescribe(number, value) {
    this.before ??= [...this.current];
    this.current[number] = value;
    this.data.fixedBy.forEach((condition, v) => {
      if (condition === number + 1) this.values[v] = value;
    });
    this.sliders[number]?.show(value);
    this.awaited ??= requestAnimationFrame(() => this.solve());
  }

  /** A move has ended: what was before it can come back. */
  moved() {
    if (this.before?.some((value, k) => value !== this.current[k])) this.undone.push(this.before);
    if (this.undone.length > kMostUndone) this.undone.shift();
    this.before = undefined;
    byId('undo').disabled = this.undone.length === 0;
    this.changed();
  }

  undo() {
    const before = this.undone.pop();
    if (before) this.#take(before);
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
    return isMoved ? { values: this.current.map((value) => value ?? '').join() } : {};
  }

  takeOwnState(state) {
    const values = (state.get('values') ?? '').split(',');
    if (values.length !== this.current.length) return;
    this.#take(values.map((text) => (text !== '' && Number.isFinite(Number(text)) ? Number(text) : undefined)));
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

// Entry of the live page: the view page, with the library in it and a slider for every
// condition. Each move solves again with the stored factorisation and cuts the curves again.
import makeLibrary from 'qelm-library';
import { bytesFromBase64, decodeMesh } from './decode.js';
import { levelsInSteps, rangeOf } from './levels.js';
import { MeshSystem, segmentsOf } from './library.js';
import { Page } from './page.js';
import { runPage, textOf } from './start.js';

const kSliderSteps = 240;

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
    const tags = Int32Array.from(data.fixedBy, (condition) => (condition > 0 ? 1 : 0));
    const began = performance.now();
    this.system = new MeshSystem(library, data.positions, data.triangles, tags);
    this.times = { construct: performance.now() - began };
    this.rule = ruleOf(facts.levels);
    this.surface.cutter = (field, levels) =>
      segmentsOf(this.system.curves(field, levels), this.surface.place);
    this.#addResetButton();
    this.fitWindow();
    this.solve();
  }

  /** Besides, the sliders: what one moves ought to be seen. */
  covered() {
    const covered = super.covered();
    const { right } = document.getElementById('facts').getBoundingClientRect();
    return covered.right && window.innerWidth > 2 * right ? { ...covered, left: right } : covered;
  }

  /** Holds the vertices of a condition, by number, at another value; draws soon after. */
  prescribe(number, value) {
    this.data.fixedBy.forEach((condition, v) => {
      if (condition === number + 1) this.values[v] = value;
    });
    this.sliders[number]?.show(value);
    this.awaited ??= requestAnimationFrame(() => this.solve());
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
    this.sayTimes();
  }

  setLevelCount(count) {
    super.setLevelCount(count);
    this.rule = ruleOf(this.levels);
  }

  sayTimes() {
    const said = (time) => `${time.toFixed(1)} ms`;
    const { solve, cut } = this.times;
    document.getElementById('times').textContent = `Solved in ${said(solve)}, cut in ${said(cut)}`;
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
    box.addEventListener('change', () => {
      if (Number.isFinite(box.valueAsNumber)) this.prescribe(number, box.valueAsNumber);
      else show(this.values[this.data.fixedBy.indexOf(number + 1)]);
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
    this.sliders.forEach(({ show }, k) => show(this.values?.[this.#firstOf(k)] ?? this.facts.conditions[k].value));
  }

  #firstOf(number) {
    return this.data.fixedBy.indexOf(number + 1);
  }

  #addResetButton() {
    const button = document.createElement('button');
    button.type = 'button';
    button.id = 'reset-values';
    button.textContent = 'Values as they were';
    button.addEventListener('click', () => {
      this.facts.conditions.forEach(({ value }, k) => value !== undefined && this.prescribe(k, value));
    });
    const times = document.createElement('p');
    times.id = 'times';
    document.getElementById('facts').append(button, times);
  }
}

runPage(async () => {
  const facts = JSON.parse(textOf('page-facts'));
  const data = decodeMesh(bytesFromBase64(textOf('page-mesh')));
  return new LivePage(facts, data, await makeLibrary());
});

// The scale beside the mesh: colours, values, levels, and the value under the pointer.
import { kColourSteps } from './decode.js';
import { niceTicks, readable } from './levels.js';

const kSvg = 'http://www.w3.org/2000/svg';
const kBarLeft = 2;
const kBarWidth = 16;
const kMargin = 12; // above and below the bar, for half a line of text
const kTickSpacing = 64; // pixels between values, about
const kClear = 15; // pixels that the smallest and the largest value keep free of others

function element(name, attributes, text) {
  const made = document.createElementNS(kSvg, name);
  for (const [key, value] of Object.entries(attributes)) made.setAttribute(key, value);
  if (text !== undefined) made.textContent = text;
  return made;
}

/** A CSS gradient has the colours from the largest value, at the top, to the smallest. */
function gradient(colours) {
  const made = element('linearGradient', { id: 'scale', x1: 0, x2: 0, y1: 0, y2: 1 });
  for (let k = 0; k < kColourSteps; k += 5) {
    const step = kColourSteps - 1 - k;
    const [r, g, b] = colours.subarray(3 * step, 3 * step + 3);
    const offset = k / (kColourSteps - 1);
    made.append(element('stop', { offset, 'stop-color': `rgb(${r} ${g} ${b})` }));
  }
  return made;
}

export class Legend {
  /** svg: an empty <svg>; colours as in decodeMesh(). */
  constructor(svg, colours) {
    this.svg = svg;
    this.defs = element('defs', {});
    this.defs.append(gradient(colours));
    this.range = { low: 0, high: 1 };
    this.levels = [];
    this.curvesShown = true;
    new ResizeObserver(() => this.#draw()).observe(svg);
  }

  setRange(range) {
    this.range = range;
    this.#draw();
  }

  /** Marks on the scale; none while curves are not shown. */
  setLevels(levels, shown = true) {
    this.levels = shown ? levels : [];
    this.#draw();
  }

  /** Points at a value, or at none (null). */
  point(value) {
    this.pointer.style.visibility = value === null ? 'hidden' : 'visible';
    if (value !== null) this.pointer.setAttribute('transform', `translate(0 ${this.#y(value)})`);
  }

  get #barHeight() {
    return Math.max(40, this.svg.clientHeight - 2 * kMargin);
  }

  #y(value) {
    const { low, high } = this.range;
    const t = (value - low) / (high - low || 1);
    return kMargin + (1 - Math.min(1, Math.max(0, t))) * this.#barHeight;
  }

  #draw() {
    const bar = { x: kBarLeft, y: kMargin, width: kBarWidth, height: this.#barHeight, rx: 3 };
    const right = kBarLeft + kBarWidth;
    this.pointer = element('path', { d: `M${right + 1} 0l7 -5v10z`, class: 'pointer' });
    this.pointer.style.visibility = 'hidden';
    const marks = this.levels.map((level) => {
      const y = this.#y(level);
      return element('line', { x1: kBarLeft, x2: right, y1: y, y2: y, class: 'level' });
    });
    this.svg.replaceChildren(
      this.defs,
      element('rect', { ...bar, fill: 'url(#scale)' }),
      ...marks,
      ...this.#values(right),
      this.pointer,
    );
  }

  #values(right) {
    const { low, high } = this.range;
    const top = this.#y(high);
    const bottom = this.#y(low);
    const wanted = this.#barHeight / kTickSpacing;
    const between = high > low ? niceTicks(low, high, wanted).reverse() : [];
    const clear = (v) => this.#y(v) - top > kClear && bottom - this.#y(v) > kClear;
    return [high, ...between.filter(clear), low].flatMap((value) => {
      const y = this.#y(value);
      const ends = value === high || value === low;
      return [
        element('line', { x1: right, x2: right + 4, y1: y, y2: y, class: 'tick' }),
        element(
          'text',
          { x: right + 10, y, dy: '0.34em', class: ends ? 'end' : '' },
          readable(value, high - low),
        ),
      ];
    });
  }
}

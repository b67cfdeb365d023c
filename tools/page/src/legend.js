// The scale beside the mesh, upright or lying: colours, values, levels, and the value pointed at.
import { kColourSteps } from './decode.js';
import { niceTicks, readable, stepIn } from './levels.js';

const kSvg = 'http://www.w3.org/2000/svg';
const kBar = { near: 2, thickness: 16 }; // pixels from the edge
const kMargin = 12; // at both ends of an upright bar, for half a line of text
const kGap = 10; // between bar and values
const kTickSpacing = { upright: 64, lying: 90 }; // pixels between values, about
const kClear = 15; // pixels that the values at the ends keep free of others
const kUnitRoom = 20; // for a line with the unit above an upright bar
const kSmallest = 0.6; // of the usual size, for values that are too long
const kMostDigits = 9;
const kExact = 1e-12; // of the range, or of the value where all have one

function element(name, attributes, text) {
  const made = document.createElementNS(kSvg, name);
  for (const [key, value] of Object.entries(attributes)) made.setAttribute(key, value);
  if (text !== undefined) made.textContent = text;
  return made;
}

/** In full where that is short, -123456.789, else as all values are read. */
function endText(value, span) {
  const short = Number(value.toPrecision(kMostDigits));
  if (Math.abs(short - value) > kExact * (span || Math.abs(value))) return readable(value, stepIn(span));
  // Its last digit is where one digit less is another number.
  for (let digits = 1; digits <= kMostDigits; ++digits)
    if (Number(short.toPrecision(digits)) === short)
      return readable(short, 10 ** (Math.floor(Math.log10(Math.abs(short) || 1)) - digits + 1));
  return readable(short);
}

/** From the smallest value to the largest: upwards, or to the right. */
function gradient(colours, id, ends) {
  const made = element('linearGradient', { id, ...ends });
  for (let step = 0; step < kColourSteps; step += 5) {
    const [r, g, b] = colours.subarray(3 * step, 3 * step + 3);
    made.append(element('stop', { offset: step / (kColourSteps - 1), 'stop-color': `rgb(${r} ${g} ${b})` }));
  }
  return made;
}

export class Legend {
  /**
   * svg: an empty <svg>; colours as in decodeMesh(). An upright one takes the width that its values
   * need and says so by `onWidth()`; one that is wider than high lies.
   */
  constructor(svg, colours, unit, onWidth) {
    Object.assign(this, { svg, unit, onWidth });
    this.defs = element('defs', {});
    this.defs.append(
      gradient(colours, 'scale-up', { x1: 0, x2: 0, y1: 1, y2: 0 }),
      gradient(colours, 'scale-along', { x1: 0, x2: 1, y1: 0, y2: 0 }),
    );
    this.range = { low: 0, high: 1 };
    this.beyond = { low: false, high: false };
    this.levels = [];
    this.pointer = element('path', {});
    new ResizeObserver(() => this.#draw()).observe(svg.parentElement);
  }

  /** Of the colours, and of the field, which may go beyond. */
  setRange(range, field) {
    this.range = range;
    this.beyond = { low: field.low < range.low, high: field.high > range.high };
    this.#draw();
  }

  /** Marks on the scale. */
  setLevels(levels) {
    this.levels = levels;
    this.#draw();
  }

  /** Points at a value, or at none (null). */
  point(value) {
    this.pointer.style.visibility = value === null ? 'hidden' : 'visible';
    if (value === null) return;
    const at = this.#along(value);
    this.pointer.setAttribute('transform', this.lies ? `translate(${at} 0)` : `translate(0 ${at})`);
  }

  /** What the scale says, for those who cannot see it. */
  get description() {
    const [low, high] = this.#ends();
    const unit = this.unit ? ` ${this.unit}` : '';
    return `Scale of values from ${low}${unit} to ${high}${unit}`;
  }

  get #start() {
    return this.lies ? kBar.near : kMargin + (this.unit ? kUnitRoom : 0);
  }

  get #length() {
    const { clientWidth, clientHeight } = this.svg;
    return Math.max(40, this.lies ? clientWidth - 2 * kBar.near : clientHeight - this.#start - kMargin);
  }

  /** Where a value lies along the bar, in pixels from the left or from the top. */
  #along(value) {
    const { low, high } = this.range;
    const t = high > low ? Math.min(1, Math.max(0, (value - low) / (high - low))) : 0.5;
    return this.#start + (this.lies ? t : 1 - t) * this.#length;
  }

  #ends() {
    const { low, high } = this.range;
    const [lowText, highText] = [low, high].map((value) => endText(value, high - low));
    return [this.beyond.low ? `\u2264 ${lowText}` : lowText, this.beyond.high ? `\u2265 ${highText}` : highText];
  }

  #draw() {
    this.lies = this.svg.parentElement.clientWidth > this.svg.parentElement.clientHeight;
    if (this.lies) this.svg.style.width = '';
    this.svg.setAttribute('aria-label', this.description);
    const [near, far] = [kBar.near, kBar.near + kBar.thickness];
    const bar = this.lies
      ? { x: this.#start, y: near, width: this.#length, height: kBar.thickness, fill: 'url(#scale-along)' }
      : { x: near, y: this.#start, width: kBar.thickness, height: this.#length, fill: 'url(#scale-up)' };
    const isOnScale = (level) => level >= this.range.low && level <= this.range.high;
    const marks = this.levels.filter(isOnScale).map((level) => this.#line(level, near, far, 'level'));
    this.pointer = element('path', {
      class: 'pointer',
      d: this.lies ? `M0 ${far + 1}l-5 7h10z` : `M${far + 1} 0l7 -5v10z`,
    });
    this.pointer.style.visibility = 'hidden';
    this.svg.replaceChildren(this.defs, element('rect', { ...bar, rx: 3 }), ...marks);
    if (this.unit && !this.lies) this.svg.append(element('text', { x: near, y: 12, class: 'unit' }, this.unit));
    this.#addValues(far);
    this.svg.append(this.pointer);
    if (!this.lies) this.#takeWidth();
  }

  #line(value, from, to, name) {
    const at = this.#along(value);
    const ends = this.lies ? { x1: at, x2: at, y1: from, y2: to } : { x1: from, x2: to, y1: at, y2: at };
    return element('line', { ...ends, class: name });
  }

  #addValues(far) {
    const { low, high } = this.range;
    const [lowText, highText] = this.#ends();
    const ends = high > low ? [[low, lowText], [high, highText]] : [[low, lowText]];
    const placed = ends.map(([value, text]) => this.#addValue(value, text, far, true));
    if (!(high > low)) return;
    const wanted = this.#length / kTickSpacing[this.lies ? 'lying' : 'upright'];
    const ticks = niceTicks(low, high, wanted);
    for (const tick of ticks) {
      const label = this.#addValue(tick, readable(tick, ticks[1] - ticks[0]), far, false);
      if (placed.some((other) => this.#touch(label, other))) {
        label.line.remove();
        label.text.remove();
      } else {
        placed.push(label);
      }
    }
  }

  #addValue(value, content, far, isEnd) {
    const at = this.#along(value);
    const line = this.#line(value, far, far + 4, 'tick');
    const place = this.lies ? { x: at, y: far + 19, 'text-anchor': 'middle' } : { x: far + kGap, y: at, dy: '0.34em' };
    const text = element('text', { ...place, class: isEnd ? 'end' : '' }, this.lies && isEnd && this.unit ? `${content} ${this.unit}` : content);
    this.svg.append(line, text);
    const width = text.getComputedTextLength();
    // A lying scale's outer values end where the bar does.
    const x = Math.min(Math.max(at, this.#start + width / 2), this.#start + this.#length - width / 2);
    if (this.lies) text.setAttribute('x', x);
    return { line, text, at, x, width };
  }

  #touch(a, b) {
    return this.lies ? Math.abs(a.x - b.x) < (a.width + b.width) / 2 + kClear : Math.abs(a.at - b.at) < kClear;
  }

  /** Room for the longest value, on small screens by smaller letters. */
  #takeWidth() {
    const left = kBar.near + kBar.thickness + kGap;
    const texts = [...this.svg.querySelectorAll('text')];
    const needed = Math.max(...texts.map((text) => Number(text.getAttribute('x')) + text.getComputedTextLength()));
    if (!(needed > left)) return; // hidden: nothing has a width
    const most = Math.max(90, window.innerWidth * 0.3);
    for (const text of texts) {
      const room = most - Number(text.getAttribute('x'));
      const part = Math.max(kSmallest, room / text.getComputedTextLength());
      if (part < 1) text.style.fontSize = `${part * 12.5}px`;
    }
    const width = `${Math.ceil(Math.min(needed, most)) + 2}px`;
    if (this.svg.style.width === width) return;
    this.svg.style.width = width;
    this.onWidth();
  }
}

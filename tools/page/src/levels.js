// Levels and the numbers that people read.

export const kMostLevels = 100;

/** {low, high} of a field. */
export function rangeOf(field) {
  let low = Infinity;
  let high = -Infinity;
  for (const value of field) {
    if (value < low) low = value;
    if (value > high) high = value;
  }
  return { low, high };
}

/**
 * `count` levels evenly between low and high and strictly inside, as `qelm curves
 * --levels` has them. Whole-numbered weights: between round values the levels are round.
 */
export function evenLevels(low, high, count) {
  const levels = [];
  for (let k = 1; k <= count; ++k) {
    const level = (low * (count + 1 - k) + high * k) / (count + 1);
    if (level > low && level < high && !(level <= levels.at(-1))) levels.push(level);
  }
  return levels;
}

// What lies nearer than this part of the range to one of its ends is there by rounding: the
// smallest value of a field held at 0 is often -1e-17.
const kRounding = 1e-9;

/**
 * The levels origin + k * step between low and high and not at them, kMostLevels of them
 * at most.
 */
export function levelsInSteps(origin, step, low, high) {
  const levels = [];
  const margin = kRounding * (high - low);
  const first = Math.ceil((low - origin) / step);
  for (let k = first; levels.length < kMostLevels; ++k) {
    const level = origin + k * step;
    if (level >= high - margin) break;
    if (level > low + margin) levels.push(level);
  }
  return levels;
}

const kUsualDigits = 6;
const kMostDigits = 17;

/**
 * A value as people write it, "0.25" rather than "0.250000", with the digits that tell it from
 * one that lies `step` away: 6500123.4 for a step of 0.1. Smaller than a step is "0" rather
 * than "1e-17". Six significant digits without a step.
 */
export function readable(value, step = 0) {
  const size = Math.abs(value);
  if (size === 0 || size < step) return '0';
  const power = Math.floor(Math.log10(size));
  const wanted = step > 0 ? power - Math.floor(Math.log10(step) + 1e-9) + 1 : kUsualDigits;
  const digits = Math.min(kMostDigits, Math.max(1, wanted));
  const rounded = Number(value.toPrecision(digits));
  // Zeros that stand for no digit, before or behind the point, are not written.
  if ((power >= 6 && power >= digits) || power < -4) {
    const [front, exponent] = rounded.toExponential().split('e');
    return minus(`${front}e${exponent.replace('+', '')}`);
  }
  return minus(String(rounded));
}

/** The step at which numbers in a range of `span` are read: a millionth of it, six digits. */
export const stepIn = (span) => (span > 0 ? 10 ** (Math.floor(Math.log10(span) + 1e-9) - 6) : 0);

/** Every level with the digits that tell it from its neighbours, and one more. */
export function levelTexts(levels) {
  let gap = Infinity;
  for (let l = 1; l < levels.length; ++l) gap = Math.min(gap, levels[l] - levels[l - 1]);
  return levels.map((level) => readable(level, Number.isFinite(gap) ? gap / 10 : 0));
}

// A hyphen is too short for a minus sign.
const minus = (digits) => digits.replaceAll('-', '\u2212');

/** A value's text and its unit. */
export const withUnit = (text, unit) => (unit ? `${text}\u202f${unit}` : text);

/** Round numbers within [low, high], about `wanted` of them. */
export function niceTicks(low, high, wanted) {
  const rough = (high - low) / Math.max(1, wanted);
  const power = 10 ** Math.floor(Math.log10(rough));
  const step = [1, 2, 5, 10].map((k) => k * power).find((s) => s >= rough) ?? rough;
  const ticks = [];
  for (let k = Math.ceil(low / step); k * step <= high; ++k) ticks.push(k * step);
  return ticks;
}

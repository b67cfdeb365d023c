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

/** The levels origin + k * step strictly between low and high, kMostLevels of them at most. */
export function levelsInSteps(origin, step, low, high) {
  const levels = [];
  const first = Math.ceil((low - origin) / step);
  for (let k = first; levels.length < kMostLevels; ++k) {
    const level = origin + k * step;
    if (level >= high) break;
    if (level > low) levels.push(level);
  }
  return levels;
}

/**
 * A value in six significant digits at most, "0.25" rather than "0.250000". What is finer than
 * a millionth of `scale`, if given, is noise there and left out: "0" rather than "1e-17".
 */
export function readable(value, scale = 0) {
  const step = scale > 0 ? 10 ** Math.floor(Math.log10(scale) - 6) : 0;
  const size = Math.abs(value);
  if (size < step || size === 0) return '0';
  const digits = step > 0 ? Math.min(6, Math.floor(Math.log10(size / step)) + 1) : 6;
  const rounded = value.toPrecision(Math.max(1, digits));
  if (size >= 1e6 || size < 1e-4) {
    const [front, exponent] = Number(rounded).toExponential().split('e');
    return minus(`${front}e${exponent.replace('+', '')}`);
  }
  return minus(String(Number(rounded)));
}

// A hyphen is too short for a minus sign.
const minus = (digits) => digits.replaceAll('-', '\u2212');

/** Round numbers within [low, high], about `wanted` of them. */
export function niceTicks(low, high, wanted) {
  const rough = (high - low) / Math.max(1, wanted);
  const power = 10 ** Math.floor(Math.log10(rough));
  const step = [1, 2, 5, 10].map((k) => k * power).find((s) => s >= rough) ?? rough;
  const ticks = [];
  for (let k = Math.ceil(low / step); k * step <= high; ++k) ticks.push(k * step);
  return ticks;
}

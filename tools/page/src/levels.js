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

/** A value in six significant digits at most, "0.25" rather than "0.250000". */
export function readable(value) {
  if (value === 0) return '0';
  const size = Math.abs(value);
  if (size >= 1e6 || size < 1e-4) {
    const [digits, exponent] = value.toExponential(5).split('e');
    return `${minus(String(Number(digits)))}e${minus(exponent.replace('+', ''))}`;
  }
  return minus(String(Number(value.toPrecision(6))));
}

// A hyphen is too short for a minus sign.
const minus = (digits) => digits.replace('-', '\u2212');

/** Round numbers within [low, high], about `wanted` of them. */
export function niceTicks(low, high, wanted) {
  const rough = (high - low) / Math.max(1, wanted);
  const power = 10 ** Math.floor(Math.log10(rough));
  const step = [1, 2, 5, 10].map((k) => k * power).find((s) => s >= rough) ?? rough;
  const ticks = [];
  for (let k = Math.ceil(low / step); k * step <= high; ++k) ticks.push(k * step);
  return ticks;
}

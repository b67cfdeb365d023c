// How far apart level curves lie, for drawing fewer of them where they are dense.

const kWindow = 4; // a segment's spacing is the mean over so many segments of its curve on each side

/** The gradient of a linear field on the triangle whose corners begin at `corner`; 0 without area. */
export function gradientOf({ positions: p, triangles }, field, corner) {
  const [a, b, c] = [triangles[corner], triangles[corner + 1], triangles[corner + 2]];
  const u = [0, 1, 2].map((k) => p[3 * b + k] - p[3 * a + k]);
  const v = [0, 1, 2].map((k) => p[3 * c + k] - p[3 * a + k]);
  const dot = (q, r) => q[0] * r[0] + q[1] * r[1] + q[2] * r[2];
  const [uu, uv, vv] = [dot(u, u), dot(u, v), dot(v, v)];
  const [f, g] = [field[b] - field[a], field[c] - field[a]];
  const det = uu * vv - uv * uv;
  // s u + t v with the Gram matrix of u and v times (s, t) equal to (f, g).
  const s = det > 0 ? (f * vv - g * uv) / det : 0;
  const t = det > 0 ? (g * uu - f * uv) / det : 0;
  return u.map((x, k) => s * x + t * v[k]);
}

/** For each level the mean of the steps to its neighbours. */
export function stepsOf(levels) {
  const last = levels.length - 1;
  if (last < 1) return levels.map(() => Infinity);
  return levels.map((_, l) => {
    if (l === 0) return levels[1] - levels[0];
    if (l === last) return levels[last] - levels[last - 1];
    return (levels[l + 1] - levels[l - 1]) / 2;
  });
}

/**
 * For every point of traceCurves() the direction and distance of the next level's curve, to first
 * order: Float32Array(4p). The distance is a mean along the curve, so that lines do not come and go
 * with every triangle.
 */
export function gapsOf(mesh, field, levels, { points, starts, levels: levelOf, triangles }) {
  const steps = stepsOf(levels);
  const gaps = new Float32Array((4 * points.length) / 3);
  for (let c = 0; c < levelOf.length; ++c) {
    const sums = [0];
    for (let p = starts[c]; p < starts[c + 1]; ++p) {
      const rise = gradientOf(mesh, field, 3 * triangles[p]);
      const size = Math.hypot(...rise);
      for (let k = 0; k < 3; ++k) gaps[4 * p + k] = size > 0 ? rise[k] / size : 0;
      sums.push(sums.at(-1) + size);
    }
    const count = starts[c + 1] - starts[c];
    for (let k = 0; k < count; ++k) {
      const [from, to] = [Math.max(0, k - kWindow), Math.min(count, k + kWindow + 1)];
      const mean = (sums[to] - sums[from]) / (to - from);
      gaps[4 * (starts[c] + k) + 3] = Math.min(kFar, steps[levelOf[c]] / mean);
    }
  }
  return gaps;
}

const kFar = 1e9; // the distance where there is no next curve

/** How long a level stays while curves are thinned out: every 2nd, every 4th, every 8th level ... */
export const rankOf = (l) => (l === 0 ? 1 << 20 : l & -l);

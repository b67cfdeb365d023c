// Joined level curves of a field that is linear on every triangle.
//
// A curve crosses from triangle to triangle through their common edges. Each crossed triangle has
// one segment for each level, whose two ends lie on edges; segments that share an edge are joined:
//
//        c            level between a and the two others:
//      /   \          one segment, from edge (a, b) to edge (a, c);
//    1-------2        the triangle beyond (a, c) goes on from there.
//   a ------- b
//
// A value at or above a level counts as above it, as in `qelm curves`.

/** Index of the first entry of `levels` (in increasing order) that is above `value`. */
function firstAbove(levels, value) {
  let begin = 0;
  let end = levels.length;
  while (begin < end) {
    const middle = (begin + end) >> 1;
    if (levels[middle] > value) end = middle;
    else begin = middle + 1;
  }
  return begin;
}

/**
 * For each level the edges, as low * n + high, that its segments join: {edges: [from, to, from, to
 * ...], triangles: the triangle of each segment}.
 */
function crossedEdges({ positions, triangles }, field, levels) {
  const n = positions.length / 3;
  const crossed = levels.map(() => ({ edges: [], triangles: [] }));
  const edge = (v, w) => (v < w ? v * n + w : w * n + v);
  for (let k = 0; k < triangles.length; k += 3) {
    const a = triangles[k];
    const b = triangles[k + 1];
    const c = triangles[k + 2];
    const low = Math.min(field[a], field[b], field[c]);
    const high = Math.max(field[a], field[b], field[c]);
    // Above `low`, and at or below `high`: that is where the corners lie apart.
    for (let l = firstAbove(levels, low); l < levels.length && levels[l] <= high; ++l) {
      const aboveA = field[a] >= levels[l];
      const aboveB = field[b] >= levels[l];
      const aboveC = field[c] >= levels[l];
      const { edges } = crossed[l];
      if (aboveA === aboveB) edges.push(edge(c, a), edge(c, b));
      else if (aboveA === aboveC) edges.push(edge(b, a), edge(b, c));
      else edges.push(edge(a, b), edge(a, c));
      crossed[l].triangles.push(k / 3);
    }
  }
  return crossed;
}

/** Chains of edges, as {edges, segments between them, closed}, from the pairs that segments join. */
function chainsOf(pairs) {
  const segmentsAt = new Map();
  for (let k = 0; k < pairs.length; ++k) {
    const list = segmentsAt.get(pairs[k]);
    if (list) list.push(k >> 1);
    else segmentsAt.set(pairs[k], [k >> 1]);
  }
  const used = new Uint8Array(pairs.length / 2);
  // More than two segments meet where the mesh branches: a curve passes through as long as it can.
  const follow = (edge) => {
    const edges = [edge];
    const segments = [];
    for (;;) {
      const next = segmentsAt.get(edges.at(-1)).find((s) => !used[s]);
      if (next === undefined) return { edges, segments };
      used[next] = 1;
      segments.push(next);
      edges.push(pairs[2 * next] === edges.at(-1) ? pairs[2 * next + 1] : pairs[2 * next]);
    }
  };
  const chains = [];
  const add = ({ edges, segments }) => {
    const closed = edges.length > 3 && edges[0] === edges.at(-1);
    if (closed) edges.pop();
    chains.push({ edges, segments, closed });
  };
  // Open curves from their ends, then what goes round.
  for (const [edge, list] of segmentsAt)
    if (list.length % 2 === 1 && list.some((s) => !used[s])) add(follow(edge));
  for (let s = 0; s < used.length; ++s) if (!used[s]) add(follow(pairs[2 * s]));
  return chains;
}

/**
 * The curves of all levels (increasing), level by level: {points: Float64Array(3p), starts: c + 1
 * places in points, levels: c indices, closed: c flags, triangles: p, where the piece that begins
 * at a point lies}. A closed curve's first point is not
 * repeated; points that coincide with the one before are left out, and curves that are one point.
 */
export function traceCurves(mesh, field, levels) {
  const { positions } = mesh;
  const n = positions.length / 3;
  const points = [];
  const pieces = [];
  const curves = { starts: [0], levels: [], closed: [] };
  const same = (p, q) => points[p] === points[q] && points[p + 1] === points[q + 1] && points[p + 2] === points[q + 2];
  const cross = (edge, level) => {
    const v = Math.floor(edge / n);
    const w = edge - v * n;
    const t = (level - field[v]) / (field[w] - field[v]);
    for (let c = 0; c < 3; ++c) points.push(positions[3 * v + c] * (1 - t) + positions[3 * w + c] * t);
  };
  crossedEdges(mesh, field, levels).forEach((crossed, l) => {
    for (const { edges, segments, closed } of chainsOf(crossed.edges)) {
      const begin = points.length;
      edges.forEach((edge, k) => {
        cross(edge, levels[l]);
        if (points.length >= begin + 6 && same(points.length - 3, points.length - 6)) points.length -= 3;
        pieces[points.length / 3 - 1] = crossed.triangles[segments[Math.min(k, segments.length - 1)]];
      });
      if (closed && points.length > begin + 3 && same(begin, points.length - 3)) points.length -= 3;
      if (points.length < begin + 6) {
        points.length = begin;
        continue;
      }
      curves.starts.push(points.length / 3);
      curves.levels.push(l);
      curves.closed.push(closed && points.length >= begin + 9 ? 1 : 0);
    }
  });
  pieces.length = points.length / 3;
  return { points: Float64Array.from(points), triangles: Uint32Array.from(pieces), ...curves };
}

/**
 * The curves' straight pieces: {points: Float32Array(6s), curveOf: Uint32Array(s), levelOf:
 * Uint16Array(s), pointOf: Uint32Array(s), the curves' point that each begins at}.
 */
export function segmentsOf({ points, starts, levels, closed }) {
  const count = levels.reduce((sum, _, c) => sum + starts[c + 1] - starts[c] - (closed[c] ? 0 : 1), 0);
  const segments = {
    points: new Float32Array(6 * count),
    curveOf: new Uint32Array(count),
    levelOf: new Uint16Array(count),
    pointOf: new Uint32Array(count),
  };
  let next = 0;
  for (let c = 0; c < levels.length; ++c)
    for (let p = starts[c]; p < starts[c + 1] - (closed[c] ? 0 : 1); ++p) {
      const q = p + 1 < starts[c + 1] ? p + 1 : starts[c];
      segments.points.set(points.subarray(3 * p, 3 * p + 3), 6 * next);
      segments.points.set(points.subarray(3 * q, 3 * q + 3), 6 * next + 3);
      segments.levelOf[next] = levels[c];
      segments.pointOf[next] = p;
      segments.curveOf[next++] = c;
    }
  return segments;
}

/** Of curve c, in the curves' units. */
export function lengthOf({ points, starts, closed }, c) {
  let sum = 0;
  const last = starts[c + 1] - 1;
  for (let p = starts[c]; p < last; ++p) sum += distanceOf(points, p, p + 1);
  return closed[c] ? sum + distanceOf(points, last, starts[c]) : sum;
}

const distanceOf = (points, p, q) =>
  Math.hypot(points[3 * p] - points[3 * q], points[3 * p + 1] - points[3 * q + 1], points[3 * p + 2] - points[3 * q + 2]);

/** The curve nearest to a point, no farther than `reach`, among the levels that `shown` says yes to; or null. */
export function nearestCurve({ points, curveOf, levelOf }, [x, y, z], reach, shown) {
  let best = reach * reach;
  let found = null;
  for (let s = 0; s < curveOf.length; ++s) {
    const k = 6 * s;
    const [ax, ay, az] = [points[k] - x, points[k + 1] - y, points[k + 2] - z];
    const [dx, dy, dz] = [points[k + 3] - points[k], points[k + 4] - points[k + 1], points[k + 5] - points[k + 2]];
    const size = dx * dx + dy * dy + dz * dz;
    const t = size > 0 ? Math.min(1, Math.max(0, -(ax * dx + ay * dy + az * dz) / size)) : 0;
    const [ex, ey, ez] = [ax + t * dx, ay + t * dy, az + t * dz];
    const off = ex * ex + ey * ey + ez * ez;
    if (off < best && shown(levelOf[s])) {
      best = off;
      found = curveOf[s];
    }
  }
  return found;
}

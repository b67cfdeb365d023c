// Level lines of a field that is linear on every triangle.

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

/** A list of numbers that grows without copying every one of them each time. */
class Growing {
  constructor(Type, capacity) {
    this.array = new Type(capacity);
    this.length = 0;
  }

  /** Room for `count` numbers at the end; returns where they begin. */
  extend(count) {
    const begin = this.length;
    this.length += count;
    if (this.length > this.array.length) {
      const larger = new this.array.constructor(2 * this.length);
      larger.set(this.array);
      this.array = larger;
    }
    return begin;
  }

  push(number) {
    const place = this.extend(1);
    this.array[place] = number; // not before: the array may be another one now
  }

  taken() {
    return this.array.slice(0, this.length);
  }
}

/** A level that only touches a corner has nothing to draw: a line without a direction. */
const isPoint = (points, k) =>
  points[k] === points[k + 3] && points[k + 1] === points[k + 4] && points[k + 2] === points[k + 5];

/**
 * Where the level set of each level crosses the triangles: one segment for each crossed
 * triangle and level. A value at or above a level counts as above it, so that the segments
 * of a closed curve close.
 *
 * mesh: {positions (3n), triangles (3m)}, field (n), levels in increasing order. Returns {points: Float32Array(6k), levelOf: Uint16Array(k)}.
 */
export function levelSegments({ positions, triangles }, field, levels) {
  const points = new Growing(Float32Array, 6 * 4096);
  const levelOf = new Growing(Uint16Array, 4096);

  const cross = (a, b, level, place) => {
    const t = (level - field[a]) / (field[b] - field[a]);
    for (let c = 0; c < 3; ++c)
      points.array[place + c] = positions[3 * a + c] * (1 - t) + positions[3 * b + c] * t;
  };

  for (let k = 0; k < triangles.length; k += 3) {
    const a = triangles[k];
    const b = triangles[k + 1];
    const c = triangles[k + 2];
    const low = Math.min(field[a], field[b], field[c]);
    const high = Math.max(field[a], field[b], field[c]);
    // Above `low`, and at or below `high`: that is where the corners lie apart.
    for (let l = firstAbove(levels, low); l < levels.length && levels[l] <= high; ++l) {
      const level = levels[l];
      const above = [field[a] >= level, field[b] >= level, field[c] >= level];
      // The corner on its own, and the two others.
      const [p, q, r] =
        above[0] === above[1] ? [c, a, b] : above[0] === above[2] ? [b, c, a] : [a, b, c];
      const place = points.extend(6);
      cross(p, q, level, place);
      cross(p, r, level, place + 3);
      if (isPoint(points.array, place)) points.length = place;
      else levelOf.push(l);
    }
  }
  return { points: points.taken(), levelOf: levelOf.taken() };
}

// Where a mesh finds room between the cards, and from how far it fills that.
import { Vector3 } from 'three';

const kFill = 0.94;
const kDirections = 48; // squared: cells of directions, of which each keeps its outermost vertex
const kFewVertices = 4000;
const kRoomCounts = 0.4; // a rectangle of twice the area may show the mesh smaller by 2^-0.4

/**
 * Vertices that decide how large a mesh looks, packed: of all that lie in about one direction from
 * the middle, the farthest one. All of them when they are few.
 */
export function outermost(positions) {
  const n = positions.length / 3;
  if (n <= kFewVertices) return Float64Array.from(positions);
  const cells = new Map();
  for (let v = 0; v < n; ++v) {
    const [x, y, z] = [positions[3 * v], positions[3 * v + 1], positions[3 * v + 2]];
    const size = Math.sqrt(x * x + y * y + z * z);
    const turn = Math.floor(((Math.atan2(y, x) / Math.PI + 1) / 2) * 2 * kDirections);
    const rise = Math.floor((Math.asin(Math.max(-1, Math.min(1, z / (size || 1)))) / Math.PI + 0.5) * kDirections);
    const cell = turn * (kDirections + 1) + rise;
    const found = cells.get(cell);
    if (!found || found.size < size) cells.set(cell, { size, v });
  }
  const points = new Float64Array(3 * cells.size);
  [...cells.values()].forEach(({ v }, k) => points.set(positions.subarray(3 * v, 3 * v + 3), 3 * k));
  return points;
}

const overlaps = (a, b) => a.left < b.right && a.right > b.left && a.top < b.bottom && a.bottom > b.top;
const contains = (a, b) => a.left <= b.left && a.right >= b.right && a.top <= b.top && a.bottom >= b.bottom;

/** The largest rectangles {left, top, right, bottom} of a window that no card covers any of. */
export function freeRectangles(width, height, cards) {
  const cuts = (low, high, size) =>
    [...new Set([0, size, ...cards.flatMap((card) => [card[low], card[high]])])]
      .filter((cut) => cut >= 0 && cut <= size)
      .sort((a, b) => a - b);
  const [xs, ys] = [cuts('left', 'right', width), cuts('top', 'bottom', height)];
  const free = [];
  for (let i = 0; i < xs.length; ++i)
    for (let j = i + 1; j < xs.length; ++j)
      for (let k = 0; k < ys.length; ++k)
        for (let l = k + 1; l < ys.length; ++l) {
          const rectangle = { left: xs[i], right: xs[j], top: ys[k], bottom: ys[l] };
          if (!cards.some((card) => overlaps(rectangle, card))) free.push(rectangle);
        }
  return free.filter((a) => !free.some((b) => b !== a && contains(b, a)));
}

/** Where along an axis the camera must be for what it sees to be in the middle. */
function middle(points, axis, forward, distance) {
  const point = new Vector3();
  let found = 0;
  for (let pass = 0; pass < 4; ++pass) {
    let low = Infinity;
    let high = -Infinity;
    for (let k = 0; k < points.length; k += 3) {
      point.fromArray(points, k);
      const slope = (point.dot(axis) - found) / (distance - point.dot(forward));
      low = Math.min(low, slope);
      high = Math.max(high, slope);
    }
    found += ((low + high) / 2) * distance;
  }
  return found;
}

/** The distance, of each axis, from which the points lie between lines of sight of these slopes. */
function distances(points, axes, forward, slopes) {
  const out = [-Infinity, -Infinity, -Infinity, -Infinity];
  const point = new Vector3();
  for (let k = 0; k < points.length; k += 3) {
    point.fromArray(points, k);
    const depth = point.dot(forward);
    for (let a = 0; a < 2; ++a) {
      const across = point.dot(axes[a]);
      out[2 * a] = Math.max(out[2 * a], depth * slopes[a] + across);
      out[2 * a + 1] = Math.max(out[2 * a + 1], depth * slopes[a] - across);
    }
  }
  return slopes.map((s, a) => (out[2 * a] + out[2 * a + 1]) / (2 * s));
}

/**
 * Looking along -forward with `right` and `above` at the right of and above the picture: which free
 * rectangle shows the points the largest, and from which target and distance they fill it.
 * `slope` is the tangent of half the angle that the window's height is seen under.
 */
export function fit(points, { forward, right, above }, slope, { width, height }, rectangles) {
  let best = null;
  for (const rectangle of rectangles) {
    const slopes = [
      (slope * kFill * (rectangle.right - rectangle.left)) / height,
      (slope * kFill * (rectangle.bottom - rectangle.top)) / height,
    ];
    if (Math.min(...slopes) <= 0) continue;
    const distance = Math.max(...distances(points, [right, above], forward, slopes));
    // A little larger in a corner is no gain: rather where there is room about.
    const area = (slopes[0] * slopes[1]) ** kRoomCounts;
    if (!best || distance / area < best.distance / best.area) best = { distance, area, rectangle };
  }
  best ??= { distance: 4, rectangle: { left: 0, top: 0, right: width, bottom: height } };
  const target = new Vector3();
  for (const axis of [right, above])
    target.addScaledVector(axis, middle(points, axis, forward, best.distance));
  return { target, distance: best.distance, rectangle: best.rectangle };
}

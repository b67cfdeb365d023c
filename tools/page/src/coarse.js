// Coarse forms of a large mesh and its curves, drawn while somebody turns them.
//
// The mesh: vertex clustering (Rossignac and Borrel, 1993). A grid of cubes divides space, each side as
// long as that of a square with a cell's share of the area; the first vertex in a cube stands for all
// of them. Triangles that lose a corner so, or repeat another one, are left out. Curves: every k-th
// point. Both take time in proportion to the mesh, once.
import { segmentsOf } from './curves.js';

export const kFewTriangles = 150000; // meshes up to this size need no coarse form
/**
 * The forms, each coarser than the one before: about how many cells the surface is divided into, of
 * which each becomes two or three triangles; and the segments of all curves together.
 */
export const kCoarseForms = [
  { cells: 12000, segments: 3000 },
  { cells: 3600, segments: 1000 },
];

function areaOf(positions, index) {
  let area = 0;
  for (let k = 0; k < index.length; k += 3) {
    const [a, b, c] = [3 * index[k], 3 * index[k + 1], 3 * index[k + 2]];
    const [ux, uy, uz] = [positions[b] - positions[a], positions[b + 1] - positions[a + 1], positions[b + 2] - positions[a + 2]];
    const [vx, vy, vz] = [positions[c] - positions[a], positions[c + 1] - positions[a + 1], positions[c + 2] - positions[a + 2]];
    area += Math.hypot(uy * vz - uz * vy, uz * vx - ux * vz, ux * vy - uy * vx) / 2;
  }
  return area;
}

/** Fewer triangles over the same vertices. Positions and index as graphics cards take them; Uint32Array. */
export function coarseIndex(positions, index, cells) {
  const size = Math.sqrt(areaOf(positions, index) / cells) || 1;
  const across = Math.ceil(2 / size) + 2;
  const vertexCount = positions.length / 3;
  const standsFor = new Uint32Array(vertexCount);
  const first = new Map();
  for (let v = 0; v < vertexCount; ++v) {
    const [x, y, z] = [0, 1, 2].map((c) => Math.floor((positions[3 * v + c] + 1) / size) + 1);
    const cell = (x * across + y) * across + z;
    if (!first.has(cell)) first.set(cell, v);
    standsFor[v] = first.get(cell);
  }
  const coarse = [];
  const seen = new Set();
  for (let k = 0; k < index.length; k += 3) {
    const [a, b, c] = [standsFor[index[k]], standsFor[index[k + 1]], standsFor[index[k + 2]]];
    if (a === b || b === c || c === a) continue;
    const low = Math.min(a, b, c);
    const high = Math.max(a, b, c);
    const name = `${low} ${a + b + c - low - high} ${high}`;
    if (seen.has(name)) continue;
    seen.add(name);
    coarse.push(a, b, c);
  }
  return Uint32Array.from(coarse);
}

/** The curves of traceCurves() with fewer points; the ends of open ones stay. */
export function coarseCurves({ points, starts, levels, closed, triangles }, most) {
  const stride = Math.ceil(points.length / 3 / most);
  const kept = [];
  const thin = { starts: [0], levels, closed: [] };
  for (let c = 0; c < levels.length; ++c) {
    for (let p = starts[c]; p < starts[c + 1]; p += stride) kept.push(p);
    if ((starts[c + 1] - 1 - starts[c]) % stride > 0) kept.push(starts[c + 1] - 1);
    thin.starts.push(kept.length);
    thin.closed.push(closed[c]);
  }
  return {
    ...thin,
    points: Float64Array.from({ length: 3 * kept.length }, (_, k) => points[3 * kept[(k / 3) | 0] + (k % 3)]),
    triangles: Uint32Array.from(kept, (p) => triangles[p]),
    pointOf: kept,
  };
}

/** segmentsOf() the coarse curves. `pointOf` numbers the points of the whole curves, for gaps and levels. */
export function coarseSegments(curves, most) {
  const thin = coarseCurves(curves, most);
  const segments = segmentsOf(thin);
  return { ...segments, pointOf: segments.pointOf.map((p) => thin.pointOf[p]) };
}

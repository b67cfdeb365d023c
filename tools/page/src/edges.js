// Edges of a triangle list.
import { cornersByVertex } from './normals.js';

/**
 * Every edge once, Uint32Array(2e), and of those that only one triangle has,
 * Uint32Array(2b), the boundary.
 */
export function edgesOf(vertexCount, triangles) {
  const { begin, corners } = cornersByVertex(vertexCount, triangles);
  const all = [];
  const boundary = [];
  const count = new Map();
  for (let v = 0; v < vertexCount; ++v) {
    count.clear();
    for (let i = begin[v]; i < begin[v + 1]; ++i) {
      const corner = corners[i];
      const first = corner - (corner % 3);
      for (let c = 0; c < 3; ++c) {
        const other = triangles[first + c];
        if (other > v) count.set(other, (count.get(other) ?? 0) + 1);
      }
    }
    for (const [other, triangleCount] of count) {
      all.push(v, other);
      if (triangleCount === 1) boundary.push(v, other);
    }
  }
  return { all: Uint32Array.from(all), boundary: Uint32Array.from(boundary) };
}

/**
 * What marks the fixed vertices: lines {v, w, ...} along edges of the boundary whose ends the
 * same condition holds, and dots at vertices that no line meets.
 */
export function fixedMarks({ positions, triangles }, fixedBy) {
  const held = (v, w) => fixedBy[v] > 0 && fixedBy[v] === fixedBy[w];
  const { boundary } = edgesOf(positions.length / 3, triangles);
  const lines = [];
  const met = new Set();
  for (let k = 0; k < boundary.length; k += 2) {
    const [v, w] = [boundary[k], boundary[k + 1]];
    if (!held(v, w)) continue;
    lines.push(v, w);
    met.add(v).add(w);
  }
  const dots = [];
  fixedBy.forEach((condition, v) => condition > 0 && !met.has(v) && dots.push(v));
  return { lines, dots };
}

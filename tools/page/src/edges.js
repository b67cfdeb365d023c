// Edges of a triangle list.
import { cornersByVertex } from './normals.js';

/**
 * Calls visit(v, w, corners) for edges between vertices that are `wanted`: v < w, and for each
 * triangle at the edge its first corner.
 */
function forEveryEdge(vertexCount, triangles, visit, wanted = () => true) {
  const { begin, corners } = cornersByVertex(vertexCount, triangles);
  const found = new Map();
  for (let v = 0; v < vertexCount; ++v) {
    if (!wanted(v)) continue;
    found.clear();
    for (let i = begin[v]; i < begin[v + 1]; ++i) {
      const first = corners[i] - (corners[i] % 3);
      for (let c = 0; c < 3; ++c) {
        const other = triangles[first + c];
        if (other <= v || !wanted(other)) continue;
        if (found.has(other)) found.get(other).push(first);
        else found.set(other, [first]);
      }
    }
    for (const [other, firsts] of found) visit(v, other, firsts);
  }
}

/** Every edge once, {v, w, ...} with v < w. */
export function edgesOf({ positions, triangles }) {
  const edges = [];
  forEveryEdge(positions.length / 3, triangles, (v, w) => edges.push(v, w));
  return Uint32Array.from(edges);
}

/**
 * What marks the fixed vertices, as {lines: {v, w, ...}, dots: {v, ...}}: lines along edges whose
 * ends one condition holds, but for those inside of patches that it holds whole, and dots at
 * the vertices that no line and no patch meets.
 */
export function fixedMarks({ positions, triangles }, fixedBy) {
  const heldAlike = (v, w) => fixedBy[v] > 0 && fixedBy[v] === fixedBy[w];
  const isWhole = (k) => [0, 1, 2].every((c) => heldAlike(triangles[k], triangles[k + c]));
  const held = [];
  const boundaryEdges = new Uint8Array(triangles.length / 3);
  const note = (v, w, firsts) => {
    if (firsts.length === 1) ++boundaryEdges[firsts[0] / 3];
    if (heldAlike(v, w)) held.push({ v, w, firsts });
  };
  // All edges of a triangle that is held whole are among these.
  forEveryEdge(positions.length / 3, triangles, note, (v) => fixedBy[v] > 0);
  // A corner triangle of a rim that is held is no patch.
  const inPatch = (k) => isWhole(k) && boundaryEdges[k / 3] < 2;
  const lines = [];
  const met = new Set();
  for (const { v, w, firsts } of held) {
    met.add(v).add(w);
    const isRim = firsts.length === 1 || firsts.filter(inPatch).length === 1;
    if (isRim || !firsts.some(isWhole)) lines.push(v, w);
  }
  const dots = [];
  fixedBy.forEach((condition, v) => condition > 0 && !met.has(v) && dots.push(v));
  return { lines, dots };
}

/**
 * The edges [v, w] of which a picture's outline may consist: where the mesh ends, and where a triangle
 * that faces the viewer meets one that does not. points: x, y, anything of each vertex on the picture.
 */
export function outlineEdges({ positions, triangles }, points) {
  const faces = (k) => {
    const [a, b, c] = [3 * triangles[k], 3 * triangles[k + 1], 3 * triangles[k + 2]];
    return (points[b] - points[a]) * (points[c + 1] - points[a + 1]) > (points[b + 1] - points[a + 1]) * (points[c] - points[a]);
  };
  const edges = [];
  forEveryEdge(positions.length / 3, triangles, (v, w, firsts) => {
    if (firsts.length === 1 || firsts.some((k) => faces(k) !== faces(firsts[0]))) edges.push([v, w]);
  });
  return edges;
}

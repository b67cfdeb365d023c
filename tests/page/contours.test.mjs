// The pure functions of the page: level lines, levels, normals, edges, what a page holds.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { levelSegments } from '../../tools/page/src/contours.js';
import { bytesFromBase64, decodeMesh } from '../../tools/page/src/decode.js';
import { edgesOf, fixedMarks } from '../../tools/page/src/edges.js';
import { evenLevels, levelsInSteps, niceTicks, rangeOf, readable } from '../../tools/page/src/levels.js';
import { normalise } from '../../tools/page/src/normalise.js';
import { cornerNormals } from '../../tools/page/src/normals.js';
import { sheet } from './shapes.mjs';

const fieldOf = ({ positions }, f) =>
  Float64Array.from({ length: positions.length / 3 }, (_, v) =>
    f(positions[3 * v], positions[3 * v + 1], positions[3 * v + 2]),
  );

/** How often each point, to six digits, is an end of a segment. */
function endsOf(points) {
  const ends = new Map();
  for (let k = 0; k < points.length; k += 3) {
    const key = [...points.slice(k, k + 3)].map((c) => c.toFixed(6)).join();
    ends.set(key, (ends.get(key) ?? 0) + 1);
  }
  return ends;
}

test('a linear field has straight level lines where the level is', () => {
  const mesh = sheet(7, 5, [0, 7, 0, 5]);
  const { points, levelOf } = levelSegments(mesh, fieldOf(mesh, (x) => 3 * x), [1, 10.5]);
  // Each line crosses two triangles in every one of the five rows of cells.
  assert.deepEqual([0, 1].map((l) => levelOf.filter((k) => k === l).length), [10, 10]);
  levelOf.forEach((l, k) => {
    for (const x of [points[6 * k], points[6 * k + 3]])
      assert.ok(Math.abs(3 * x - [1, 10.5][l]) < 1e-6, `segment ${k} lies at ${x}`);
  });
});

test('closed level lines close, also through vertices at the level', () => {
  const mesh = sheet(20, 20, [-1, 1, -1, 1]);
  // Diamonds with corners and whole sides in the grid's vertices.
  const field = fieldOf(mesh, (x, y) => Math.round(20 * (Math.abs(x) + Math.abs(y))) / 20);
  const { points } = levelSegments(mesh, field, [0.5]);
  assert.ok(points.length > 0);
  const ends = endsOf(points);
  for (const [key, count] of ends) assert.equal(count % 2, 0, `open at ${key}`);
});

test('a value at the level counts as above it', () => {
  const mesh = sheet(1, 1, [0, 1, 0, 1]);
  const field = fieldOf(mesh, (x) => x);
  assert.equal(levelSegments(mesh, field, [0]).levelOf.length, 0, 'nothing lies below 0');
  const { points, levelOf } = levelSegments(mesh, field, [1]);
  // The other triangle has only a corner at 1.
  assert.equal(levelOf.length, 1);
  assert.deepEqual([...points].sort(), [0, 0, 0, 1, 1, 1], 'the side x = 1');
  assert.equal(levelSegments(mesh, field, []).levelOf.length, 0);
});

test('many levels through one triangle each have their segment', () => {
  const mesh = { positions: Float64Array.from([0, 0, 0, 1, 0, 0, 0, 1, 0]), triangles: [0, 1, 2] };
  const levels = evenLevels(0, 1, 5000);
  const { points, levelOf } = levelSegments(mesh, [0, 1, 0.5], levels);
  assert.equal(levelOf.length, 5000);
  assert.ok(levelOf.every((l, k) => l === k), 'each its own, in order');
  for (let k = 0; k < 5000; ++k)
    for (const end of [6 * k, 6 * k + 3])
      assert.ok(Math.abs(points[end] + points[end + 1] / 2 - levels[k]) < 1e-6, `level ${k}`);
});

test('even levels are those of the command line', () => {
  assert.deepEqual(evenLevels(0, 1, 9), [0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9]);
  assert.deepEqual(evenLevels(-2, 2, 3), [-1, 0, 1]);
  assert.deepEqual(evenLevels(1, 1, 4), []);
  assert.deepEqual(evenLevels(0, 1, 0), []);
});

test('steps of levels go on beyond the first range', () => {
  assert.deepEqual(levelsInSteps(0.25, 0.25, 0, 1), [0.25, 0.5, 0.75]);
  assert.deepEqual(levelsInSteps(0.25, 0.25, -0.6, 1.1), [-0.5, -0.25, 0, 0.25, 0.5, 0.75, 1]);
  assert.deepEqual(levelsInSteps(0.25, 0.25, 0.3, 0.4), []);
  assert.equal(levelsInSteps(0, 1e-9, 0, 1).length, 100);
});

test('numbers are short and keep their digits', () => {
  const texts = [0, 0.1 + 0.2, -1.5, 1234567, 1e-9, 123.456789, 20].map((v) => readable(v));
  assert.deepEqual(texts, ['0', '0.3', '−1.5', '1.23457e6', '1e−9', '123.457', '20']);
  assert.deepEqual([1e-17, -0.4e-6, 0.123456789, -2e-6, 7e-7].map((v) => readable(v, 1)), ['0', '0', '0.123457', '−2e−6', '0']);
  assert.deepEqual([1e6 + 0.25, 1e6 + 3].map((v) => readable(v, 1e3)), ['1e6', '1e6']);
  assert.deepEqual(niceTicks(0, 1, 5).map((v) => readable(v)), ['0', '0.2', '0.4', '0.6', '0.8', '1']);
  assert.ok(niceTicks(-3.7, 1234, 6).length <= 8);
});

test('meshes of any size and place fill the same ball', () => {
  for (const [size, place] of [[1, 0], [1e150, 0], [1e-150, 0], [3, 1e6]]) {
    const { positions } = sheet(4, 4, [place, place + size, place, place + size]);
    const { local, centre, radius } = normalise(positions);
    const farthest = Math.max(...Array.from({ length: 25 }, (_, v) => Math.hypot(...local.slice(3 * v, 3 * v + 3))));
    assert.ok(Math.abs(farthest - 1) < 1e-9, `${size}: ${farthest}`);
    assert.ok(Math.abs(local[0] * radius + centre[0] - place) <= 1e-15 * Math.max(size, place));
  }
});

test('normals are smooth on a curved sheet and sharp at a fold', () => {
  const fold = sheet(2, 1, [-1, 1, 0, 1], (x) => Math.abs(x));
  const normals = cornerNormals(fold);
  for (let k = 0; k < normals.length; k += 3) assert.ok(Math.abs(Math.abs(normals[k]) - Math.SQRT1_2) < 1e-6);
  const bow = sheet(40, 1, [-1, 1, 0, 1], (x) => -x * x / 4);
  const smooth = cornerNormals(bow);
  const byVertex = new Map();
  bow.triangles.forEach((v, k) => {
    const x = smooth[3 * k];
    assert.ok(!byVertex.has(v) || Math.abs(byVertex.get(v) - x) < 1e-6, `corner ${k}`);
    byVertex.set(v, x);
  });
});

const pairsOf = (list) => Array.from({ length: list.length / 2 }, (_, k) => `${list[2 * k]}-${list[2 * k + 1]}`);

test('every edge is there once', () => {
  const mesh = sheet(3, 2, [0, 3, 0, 2]);
  const pairs = pairsOf(edgesOf(mesh));
  assert.equal(pairs.length, 3 * 3 + 2 * 4 + 6);
  assert.equal(new Set(pairs).size, pairs.length);
  assert.ok(pairs.includes('0-5') && !pairs.includes('1-4'), 'diagonals go up to the right');
});

test('fixed vertices are marked by lines, by rims of patches, or by dots', () => {
  const mesh = sheet(4, 4, [0, 4, 0, 4]);
  const marks = (held) => {
    const fixedBy = Uint32Array.from({ length: 25 }, (_, v) => held[v] ?? 0);
    const { lines, dots } = fixedMarks(mesh, fixedBy);
    return { lines: pairsOf(lines).sort(), dots };
  };
  // A side of the sheet, and a vertex of another condition beside it.
  assert.deepEqual(marks({ 0: 1, 1: 1, 2: 1, 3: 1, 4: 1, 6: 2 }), {
    lines: ['0-1', '1-2', '2-3', '3-4'],
    dots: [6],
  });
  // A whole rim: the diagonals that cut its corners off are not part of it.
  const rim = {};
  for (let v = 0; v < 25; ++v) if (v < 5 || v > 19 || v % 5 === 0 || v % 5 === 4) rim[v] = 1;
  assert.equal(marks(rim).lines.length, 16);
  // A line through the inside.
  assert.deepEqual(marks({ 11: 1, 12: 1, 13: 1 }), { lines: ['11-12', '12-13'], dots: [] });
  // A patch of one cell: its diagonal 6-12 is inside.
  assert.deepEqual(marks({ 6: 1, 7: 1, 11: 1, 12: 1 }).lines, ['11-12', '6-11', '6-7', '7-12']);
});

test('a damaged page is refused with its reason', () => {
  const head = new Uint8Array(20 + 24 * 3 + 8 * 3 + 768 + 3 + 3);
  const view = new DataView(head.buffer);
  [0x4d4c4551, 1, 3, 1].forEach((word, k) => view.setUint32(4 * k, word, true));
  head.set([0, 2, 2], head.length - 3); // corners 0, 1, 2
  const mesh = decodeMesh(head);
  assert.deepEqual([...mesh.triangles], [0, 1, 2]);
  assert.throws(() => decodeMesh(head.slice(0, head.length - 1)), /cut short/);
  assert.throws(() => decodeMesh(head.slice(0, 40)), /cut short/);
  assert.throws(() => decodeMesh(new Uint8Array(5)), /holds no mesh/);
  head[head.length - 1] = 8; // 1 + 4
  assert.throws(() => decodeMesh(head), /corner 2 names no vertex/);
  view.setUint32(4, 2, true);
  assert.throws(() => decodeMesh(head), /another version/);
  assert.deepEqual([...bytesFromBase64(' AP+A\n')], [0, 255, 128]);
});

test('the range of a field is its smallest and largest value', () => {
  assert.deepEqual(rangeOf(Float64Array.of(3, -1, 2)), { low: -1, high: 3 });
});

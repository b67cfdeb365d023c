// The page's functions that need no browser: level curves, levels, normals, edges, what a page holds.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { lengthOf, nearestCurve, segmentsOf, traceCurves } from '../../tools/page/src/curves.js';
import { bytesFromBase64, decodeMesh } from '../../tools/page/src/decode.js';
import { edgesOf, fixedMarks, outlineEdges } from '../../tools/page/src/edges.js';
import { freeRectangles, outermost } from '../../tools/page/src/fit.js';
import { splitVertices } from '../../tools/page/src/geometry.js';
import { evenLevels, levelsInSteps, levelTexts, niceTicks, rangeOf, readable, stepIn } from '../../tools/page/src/levels.js';
import { normalise } from '../../tools/page/src/normalise.js';
import { cornerNormals } from '../../tools/page/src/normals.js';
import { followPointer } from '../../tools/page/src/pointer.js';
import { DepthPicture, visibleParts } from '../../tools/page/src/raster.js';
import { gapsOf, rankOf } from '../../tools/page/src/spacing.js';
import { firstView, namedView } from '../../tools/page/src/views.js';
import { ball, bracket, sheet } from './shapes.mjs';

const levelSegments = (mesh, field, levels) => segmentsOf(traceCurves(mesh, field, levels));

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

test('a linear field has straight level curves where the level is', () => {
  const mesh = sheet(7, 5, [0, 7, 0, 5]);
  const { points, levelOf } = levelSegments(mesh, fieldOf(mesh, (x) => 3 * x), [1, 10.5]);
  // Each curve crosses two triangles in every one of the five rows of cells.
  assert.deepEqual([0, 1].map((l) => levelOf.filter((k) => k === l).length), [10, 10]);
  levelOf.forEach((l, k) => {
    for (const x of [points[6 * k], points[6 * k + 3]])
      assert.ok(Math.abs(3 * x - [1, 10.5][l]) < 1e-6, `segment ${k} lies at ${x}`);
  });
});

test('closed level curves close, also through vertices at the level', () => {
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

test('no level lies at rounding distance from an end of the range', () => {
  const levels = evenLevels(0, 1, 19);
  assert.deepEqual(levelsInSteps(levels[0], levels[1] - levels[0], -1e-17, 1 + 2e-16).length, 19);
});

test('numbers are short and keep their digits', () => {
  const texts = [0, 0.1 + 0.2, -1.5, 1234567, 1e-9, 123.456789, 20].map((v) => readable(v));
  assert.deepEqual(texts, ['0', '0.3', '−1.5', '1.23457e6', '1e−9', '123.457', '20']);
  const inOne = (v) => readable(v, stepIn(1));
  assert.deepEqual([1e-17, -0.4e-6, 0.123456789, -2e-6, 7e-7].map(inOne), ['0', '0', '0.123457', '−2e−6', '0']);
  assert.deepEqual(niceTicks(0, 1, 5).map((v) => readable(v)), ['0', '0.2', '0.4', '0.6', '0.8', '1']);
  assert.ok(niceTicks(-3.7, 1234, 6).length <= 8);
});

test('numbers far from zero have the digits that tell neighbours apart', () => {
  assert.deepEqual([6512000.75, 6512000.8].map((v) => readable(v, 0.01)), ['6512000.75', '6512000.8']);
  assert.deepEqual([1e6 + 0.25, 1e6 + 3].map((v) => readable(v, 0.1)), ['1000000.3', '1000003']);
  assert.deepEqual(levelTexts([1e6, 1e6 + 0.5, 1e6 + 1]), ['1000000', '1000000.5', '1000001']);
  assert.deepEqual(levelTexts([1 / 7, 2 / 7, 3 / 7]), ['0.14', '0.29', '0.43']);
  assert.deepEqual(levelTexts([-123456.789]), ['−123457']);
  assert.deepEqual(levelTexts([]), []);
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

test('every edge is found once', () => {
  const mesh = sheet(3, 2, [0, 3, 0, 2]);
  const pairs = pairsOf(edgesOf(mesh));
  assert.equal(pairs.length, 3 * 3 + 2 * 4 + 6);
  assert.equal(new Set(pairs).size, pairs.length);
  assert.ok(pairs.includes('0-5') && !pairs.includes('1-4'), 'diagonals go up to the right');
});

test('prescribed vertices are marked by lines, by rims of patches, or by dots', () => {
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
  const head = new Uint8Array(24 + 24 * 3 + 8 * 3 + 768 + 4 + 3);
  const view = new DataView(head.buffer);
  [0x4d4c4551, 2, 3, 1, 0, 1].forEach((word, k) => view.setUint32(4 * k, word, true));
  head.set([2, 0, 1, 5], head.length - 7); // two vertices free, one held by the fifth
  head.set([0, 2, 2], head.length - 3); // corners 0, 1, 2
  const mesh = decodeMesh(head);
  assert.deepEqual([...mesh.triangles], [0, 1, 2]);
  assert.deepEqual([...mesh.fixedBy], [0, 0, 5]);
  assert.throws(() => decodeMesh(head.slice(0, head.length - 1)), /cut short/);
  assert.throws(() => decodeMesh(head.slice(0, 40)), /cut short/);
  assert.throws(() => decodeMesh(new Uint8Array(5)), /holds no mesh/);
  head[head.length - 1] = 8; // 1 + 4
  assert.throws(() => decodeMesh(head), /corner 2 names no vertex/);
  head[head.length - 7] = 4; // more vertices than there are
  assert.throws(() => decodeMesh(head), /damaged/);
  view.setUint32(4, 1, true);
  assert.throws(() => decodeMesh(head), /another version/);
  assert.deepEqual([...bytesFromBase64(' AP+A\n')], [0, 255, 128]);
});

test('the range of a field is its smallest and largest value', () => {
  assert.deepEqual(rangeOf(Float64Array.of(3, -1, 2)), { low: -1, high: 3 });
});

test('a curve is one polyline, closed or open, with its length', () => {
  const mesh = sheet(40, 40, [-1, 1, -1, 1]);
  const field = fieldOf(mesh, (x, y) => Math.hypot(x, y));
  const curves = traceCurves(mesh, field, [0.5, 1.2]);
  assert.deepEqual(curves.levels, [0, 1, 1, 1, 1], 'a circle, and an arc in each corner');
  assert.deepEqual(curves.closed, [1, 0, 0, 0, 0]);
  assert.ok(Math.abs(lengthOf(curves, 0) / Math.PI - 1) < 0.01, `${lengthOf(curves, 0)}`);
  curves.triangles.forEach((t) => assert.ok(t < mesh.triangles.length / 3));
  const segments = segmentsOf(curves);
  assert.equal(segments.curveOf.filter((c) => c === 0).length, curves.starts[1], 'the circle closes');
  const near = (x, y, shown = () => true) => nearestCurve(segments, [x, y, 0], 0.05, shown);
  assert.equal(near(0.52, 0), 0);
  assert.ok(near(0.85, 0.85) > 0);
  assert.equal(near(0.52, 0, (l) => l !== 0), null, 'not what is hidden');
  assert.equal(near(0, 0), null);
});

test('curves on a closed surface close, also where they pass through vertices', () => {
  const mesh = ball(12, 16, () => 1);
  const field = fieldOf(mesh, (x, y, z) => Math.round(z * 1e6) / 1e6);
  const { closed } = traceCurves(mesh, field, [field[1 + 16 * 8], 0, 0.33]);
  assert.deepEqual(closed, [1, 1, 1]);
});

test('the gaps between curves of a linear field are measured', () => {
  const mesh = sheet(10, 10, [0, 1, 0, 1]);
  const field = fieldOf(mesh, (x) => 2 * x);
  const levels = [0.5, 1, 1.5];
  const gaps = gapsOf(mesh, field, levels, traceCurves(mesh, field, levels));
  for (let k = 0; k < gaps.length; k += 4)
    [1, 0, 0, 0.25].forEach((wanted, c) => assert.ok(Math.abs(gaps[k + c] - wanted) < 1e-6, `${gaps.slice(k, k + 4)}`));
  assert.deepEqual([1, 2, 3, 4, 12].map(rankOf), [1, 2, 1, 4, 4]);
  assert.ok(rankOf(0) > 1000);
});

test('shared vertices of the surface are split at sharp edges only', () => {
  assert.equal(splitVertices(sheet(5, 4, [0, 1, 0, 1])).vertexOf.length, 30);
  const fold = splitVertices(sheet(2, 1, [-1, 1, 0, 1], (x) => Math.abs(x)));
  assert.equal(fold.vertexOf.length, 8, 'two vertices lie on the fold');
  assert.equal(Math.max(...fold.index), 7);
});

test('the free rectangles between cards are found', () => {
  const cards = [
    { left: 0, right: 300, top: 0, bottom: 100 },
    { left: 900, right: 1000, top: 0, bottom: 400 },
  ];
  const free = freeRectangles(1000, 600, cards).map((r) => [r.left, r.top, r.right, r.bottom].join());
  assert.deepEqual(free.sort(), ['0,100,900,600', '0,400,1000,600', '300,0,900,600']);
  assert.deepEqual(freeRectangles(10, 10, []), [{ left: 0, top: 0, right: 10, bottom: 10 }]);
});

test('the outermost vertices tell how large a mesh looks', () => {
  const { positions } = ball(200, 200, () => 1);
  const few = outermost(positions);
  assert.ok(few.length < positions.length / 4);
  for (let c = 0; c < 3; ++c) {
    const highest = few.reduce((most, p, k) => (k % 3 === c ? Math.max(most, p) : most), -1);
    assert.ok(highest > 0.995, `${highest}`);
  }
});

test('a view shows the same side whichever axis is up', () => {
  assert.deepEqual(namedView('front', 'z').toward.toArray(), [0, -1, 0]);
  assert.deepEqual(namedView('front', 'y').toward.toArray().map(Math.abs), [0, 0, 1]);
  assert.ok(namedView('front', 'y').toward.z > 0);
  assert.deepEqual(namedView('right', 'x').toward.toArray(), [0, 1, 0]);
  for (const up of ['x', 'y', 'z']) {
    const [front, right, top] = ['front', 'right', 'top'].map((name) => namedView(name, up).toward);
    assert.ok(right.clone().cross(front).dot(top) < -0.99, `${up}: right-handed`);
    // From above, what is in front is at the bottom.
    const flat = firstView({ up }, 'xyz'.split('').map((axis) => (axis === up ? 0 : 2)));
    assert.deepEqual(flat.up.clone().negate().toArray().map((c) => c || 0), front.toArray().map((c) => c || 0));
  }
  const roof = firstView({ up: 'z' }, [10, 8, 2]).toward.normalize();
  assert.ok(roof.z > 0.68, 'roofs are seen from above');
  assert.ok(firstView({ up: 'z' }, [10, 8, 9]).toward.normalize().z < 0.55);
});

test('without a graphics card the nearer triangle covers, and lines end where they pass behind', () => {
  const depth = new DepthPicture(20, 20);
  const put = [];
  depth.add(Float32Array.of(0, 0, 0.5, 20, 0, 0.5, 0, 20, 0.5), 0, 3, 6, (at) => put.push(at));
  assert.ok(put.length > 180 && put.length < 220, `${put.length}`);
  depth.add(Float32Array.of(0, 0, 0.25, 20, 0, 0.25, 0, 20, 0.25), 0, 3, 6, () => assert.fail('farther'));
  const parts = visibleParts(depth, Float32Array.of(1, 5, 0.25, 19, 5, 0.25), 0, 2, false);
  assert.equal(parts.length, 1);
  assert.ok(parts[0][0] > 12 && parts[0].at(-2) === 19, `${parts[0]}`);
});

test('an outline is where the mesh ends or turns away', () => {
  const flat = sheet(3, 3, [0, 3, 0, 3]);
  assert.equal(outlineEdges(flat, flat.positions).length, 12);
  const block = bracket();
  // Seen along its bore: both rims of the bore and the outer one twice, nothing else turns away.
  const across = Float64Array.from(block.positions, (_, k) => block.positions[k - (k % 3) + [0, 2, 1][k % 3]]);
  assert.ok(outlineEdges(block, across).length >= 128);
});

test('a tap is a tap even where the machine was too busy to see it end', (t) => {
  t.mock.timers.enable({ apis: ['setTimeout'] });
  globalThis.requestAnimationFrame = () => {};
  const listeners = {};
  const seen = [];
  followPointer(
    { addEventListener: (name, listener) => (listeners[name] = listener) },
    { hover: () => {}, away: () => {}, tap: (x, y) => seen.push(`tap ${x},${y}`), suspend: (is) => seen.push(`suspend ${is}`) },
  );
  const finger = { pointerId: 1, pointerType: 'touch', button: 0, offsetX: 50, offsetY: 60 };
  for (const [held, wanted] of [[40, ['suspend true', 'suspend false', 'tap 50,60']], [600, ['suspend true', 'suspend false']]]) {
    seen.length = 0;
    listeners.pointerdown({ ...finger, type: 'pointerdown', timeStamp: 1000 });
    t.mock.timers.tick(700);
    listeners.pointerup({ ...finger, type: 'pointerup', timeStamp: 1000 + held });
    assert.deepEqual(seen, wanted, `held for ${held} ms`);
  }
});

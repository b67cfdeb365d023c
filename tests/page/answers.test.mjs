// What a page answers: curves, levels, measures, files, links; and how it does without WebGL.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { coarseCurves, coarseIndex } from '../../tools/page/src/coarse.js';
import { traceCurves } from '../../tools/page/src/curves.js';
import { Session } from './session.mjs';
import { sheet, terrain } from './shapes.mjs';

const session = new Session();
// Seen from above: the field is (x + 2) / 4.
const kLevelCurve = /Level 0\.25.mm, open, 2 long/;
const kSides = ['--fix', 'box:-2,-9,0,-2,9,0=0', '--fix', 'box:2,-9,0,2,9,0=1'];

before(async () => {
  session.make('flat', sheet(40, 20, [-2, 2, -1, 1]), ...kSides, '--levels', '3', '--unit', 'mm');
  session.make('terrain', terrain(), '--fix', 'boundary=400', '--fix', 'near:512500,6512200,431=455.5', '--levels', '9');
  session.make('large', sheet(400, 400, [-1, 1, -1, 1], (x, y) => 0.2 * Math.sin(5 * x * y)), '--fix', 'vertex:0=0', '--fix', 'vertex:160000=1');
  await session.start();
});
after(() => session.end());

const levels = () => session.page.evaluate(() => qelmPage.levels);
const press = async (text) => {
  const buttons = await session.page.$$('#answer button');
  for (const button of buttons) if ((await button.evaluate((b) => b.textContent)) === text) return button.click();
  throw new Error(`no button ${text}`);
};

/** What a paste puts into a text box. */
async function pasted() {
  const { page } = session;
  await page.evaluate(() => {
    const area = document.createElement('textarea');
    area.id = 'paste';
    document.body.append(area);
    area.focus();
  });
  await page.keyboard.down('Control');
  await page.keyboard.press('v', { commands: ['Paste'] });
  await page.keyboard.up('Control');
  return page.$eval('#paste', (area) => (area.remove(), area.value));
}

test('a curve that is pointed at says its level and length, and stands out', async () => {
  await session.open('flat');
  const { page } = session;
  const at = await session.onScreen([-1, 0.4, 0]);
  await page.mouse.move(...at);
  await page.waitForFunction(() => !document.getElementById('reading').hidden);
  assert.match(await session.text('#reading'), kLevelCurve);
  const before = await session.picture();
  await page.mouse.click(...at);
  assert.match(await session.text('#answer'), kLevelCurve);
  await page.mouse.move(5, 5);
  const chosen = await session.picture();
  const [red, green] = chosen.at(...(await session.onScreen([-1, -0.5, 0])));
  assert.ok(red > 200 && green < 120, `${red}, ${green}`);
  assert.ok(before.difference(chosen) > 0.001);
  await press('Copy');
  await page.waitForFunction(() => document.getElementById('announcement').textContent === 'Copied');
  assert.equal(await pasted(), await page.$eval('#answer-text', (element) => element.textContent));
  await page.keyboard.press('Escape');
  assert.equal(await session.text('#answer'), '');
  await session.closed();
});

test('levels can be added where one points, hidden, and shown again', async () => {
  await session.open('flat');
  const { page } = session;
  await page.mouse.click(...(await session.onScreen([0.5, 0.2, 0])));
  await press('Add level here');
  const added = await levels();
  assert.equal(added.length, 4);
  assert.ok(Math.abs(added[2] - 0.625) < 2e-3, `${added}`);
  await page.mouse.move(...(await session.onScreen([1.5, 0.2, 0])));
  await page.waitForFunction(() => !document.getElementById('reading').hidden);
  await page.keyboard.press('a');
  assert.equal((await levels()).length, 5);
  await page.evaluate(() => qelmPage.setLevelCount(3));
  await page.click('#level-details summary');
  await page.waitForSelector('#level-list label');
  const list = await page.$$eval('#level-list label', (all) => all.map((label) => label.innerText.replace(/\s+/g, ' ')));
  assert.deepEqual(list, ['0.25 mm 2 long', '0.5 mm 2 long', '0.75 mm 2 long']);
  const at = await session.onScreen([0, 0.3, 0]);
  const dark = (await session.picture()).at(...at);
  await page.click('#level-list label:nth-child(1)');
  await page.$$eval('#level-list input', (boxes) => boxes[1].click());
  assert.ok(Math.max(...dark) < 60 && Math.max(...(await session.picture()).at(...at)) > 90, 'the curve is gone');
  assert.equal(await page.$$eval('#legend .level', (lines) => lines.length), 1, 'two levels are hidden');
  await session.closed();
});

test('two places give their distance and the difference of their values', async () => {
  await session.open('flat');
  const { page } = session;
  await page.click('#measure');
  await page.mouse.click(...(await session.onScreen([-1.5, -0.5, 0])));
  await page.mouse.click(...(await session.onScreen([1.5, 0.5, 0])));
  const [distance, difference] = (await session.text('#answer')).split('\n').map((line) => Number(line.replace(/[^\d.]/g, '')));
  assert.ok(Math.abs(distance - Math.sqrt(10)) < 0.01, `${distance}`);
  assert.ok(Math.abs(difference - 0.75) < 0.003, `${difference}`);
  const line = (await session.picture()).at(...(await session.onScreen([0.3, 0.1, 0])));
  assert.ok(line[0] > 200 && line[1] < 120, `${line}`);
  await page.keyboard.press('m');
  assert.equal(await session.text('#answer'), '');
  await session.closed();
});

test('numbers stand on their curves, upright, and not on what is behind', async () => {
  await session.open('flat');
  const { page } = session;
  const showValues = async (values) => {
    await page.evaluate((shown) => qelmPage.show({ values: shown }), values);
    await session.settled();
    return page.$eval('#labels', (canvas) => canvas.hidden);
  };
  const without = await session.picture();
  assert.equal(await showValues(true), false);
  const drawn = () => page.evaluate(() => qelmPage.labels.drawn.map(({ text, x, y }) => ({ text, value: qelmPage.surface.pick(x, y)?.value })));
  const first = await drawn();
  assert.deepEqual(first.map(({ text }) => text).sort(), ['0.25', '0.5', '0.75']);
  for (const { text, value } of first) assert.ok(Math.abs(value - Number(text)) < 0.01, `${text}: ${value}`);
  await page.keyboard.press('ArrowLeft');
  await page.keyboard.press('ArrowUp');
  await session.settled();
  for (const { text, value } of await drawn()) assert.ok(Math.abs(value - Number(text)) < 0.03, `turned, ${text}: ${value}`);
  assert.equal((await drawn()).length, 3);
  await page.keyboard.press('0');
  const labelled = without.difference(await session.picture());
  assert.equal(await showValues(false), true, 'an empty canvas takes time to compose');
  const after = without.difference(await session.picture());
  assert.ok(labelled > 1e-4 && after < labelled / 10, `${labelled}, ${after}`);
  await session.closed();
});

test('coordinates far from zero are read in full and do not jitter', async () => {
  await session.open('terrain');
  const { page } = session;
  const place = [512500.25, 6512150.75, 431 + 40 * Math.sin(200 / 90) * Math.cos(150 / 70) + 14 * Math.sin(200 / 31 + 150 / 43)];
  await page.mouse.move(...(await session.onScreen(place)));
  await page.waitForFunction(() => !document.getElementById('reading').hidden);
  const [x, y] = (await session.text('#reading')).split('\n')[1].split(', ').map((text) => Number(text.replace('−', '-')));
  assert.ok(Math.abs(x - place[0]) < 2 && Math.abs(y - place[1]) < 2, `${x}, ${y}`);
  assert.ok(!Number.isInteger(x) && !Number.isInteger(y), 'parts of a unit are read');
  // The surface that is drawn is off by less than a millimetre.
  const worst = await page.evaluate(() => {
    const { surface, data } = qelmPage;
    const drawn = surface.surface.geometry.attributes.position.array;
    let most = 0;
    for (let k = 0; k < drawn.length; ++k) {
      const c = k % 3;
      const exact = data.positions[3 * surface.vertexOf[(k - c) / 3] + c];
      most = Math.max(most, Math.abs(drawn[k] * surface.place.radius - (exact - surface.place.centre[c])));
    }
    return most;
  });
  assert.ok(worst < 1e-3, `${worst}`);
  await session.closed();
});

test('a link shows the same again, and a fresh page has none', async () => {
  await session.open('flat');
  const { page } = session;
  const hash = () => page.evaluate(() => location.hash);
  await new Promise((done) => setTimeout(done, 400));
  assert.equal(await hash(), '');
  await page.keyboard.press('5');
  await page.evaluate(() => (qelmPage.setLevelCount(7), qelmPage.hideLevel(qelmPage.levels[2], true), qelmPage.show({ edges: true })));
  await page.focus('#canvas');
  await page.keyboard.press('ArrowLeft');
  await page.keyboard.press('t');
  await page.waitForFunction(() => location.hash.includes('theme=light'));
  const fragment = await hash();
  const state = () =>
    page.evaluate(() => ({
      levels: qelmPage.levels,
      hidden: [...qelmPage.surface.hidden],
      shown: qelmPage.surface.shown,
      theme: qelmPage.theme,
      camera: qelmPage.surface.camera.position.toArray().map((c) => c.toFixed(4)),
    }));
  const wanted = await state();
  await session.closed();
  await session.open('flat', { fragment });
  await session.settled();
  assert.deepEqual(await session.page.evaluate(() => ({
    levels: qelmPage.levels,
    hidden: [...qelmPage.surface.hidden],
    shown: qelmPage.surface.shown,
    theme: qelmPage.theme,
    camera: qelmPage.surface.camera.position.toArray().map((c) => c.toFixed(4)),
  })), wanted);
  await session.closed();
  await session.open('flat', { fragment: '#n=x&levels=,a&view=1,2&hide=-4&show=hc' });
  assert.equal((await session.page.evaluate(() => qelmPage.levels)).length, 0, 'no number is none');
  await session.closed();
});

test('field and curves are saved as the command line writes them', async () => {
  await session.open('flat');
  session.qelm('solve', 'flat.obj', ...kSides, '-o', 'field.csv', '-q');
  const csv = await session.offered('save-csv');
  assert.equal(csv.name, 'flat.csv');
  const numbers = (text) => text.trim().split('\n').slice(1).map((line) => line.split(',').map(Number));
  assert.deepEqual(numbers(csv.text), numbers(readFileSync(session.file('field.csv'), 'utf8')));
  const { name, text } = await session.offered('save-obj');
  assert.equal(name, 'flat.curves.obj');
  assert.deepEqual(text.match(/^g .*$/gm), ['g level_0.25', 'g level_0.5', 'g level_0.75']);
  const vertices = text.match(/^v .*$/gm).map((line) => line.slice(2).split(' ').map(Number));
  const lines = text.match(/^l .*$/gm).map((line) => line.slice(2).split(' ').map(Number));
  assert.equal(lines.length, 3);
  assert.equal(lines.flat().length, vertices.length);
  lines.forEach((line, k) => line.forEach((v) => assert.ok(Math.abs(vertices[v - 1][0] - (k - 1)) < 1e-9)));
  const svg = (await session.offered('save-svg')).text;
  assert.match(svg, /^<svg xmlns/);
  assert.equal(svg.match(/<title>/g).length, 4, 'its own and one for each level');
  const drawn = [...svg.matchAll(/<path stroke="[^"]+" d="M([\d.]+) /g)].map(([, x]) => Number(x));
  for (const [k, x] of drawn.entries()) assert.ok(Math.abs(x - (await session.onScreen([k - 1, 0, 0]))[0]) < 1.5, `${x}`);
  assert.equal(drawn.length, 3);
  await session.closed();
});

test('vertices in no triangle are not shown, and keep their lines in the saved field', async () => {
  const { positions, triangles } = sheet(4, 2, [-2, 2, -1, 1]);
  // One in front of the others, two behind, far away.
  const strays = { positions: [99, 0, 0, ...positions, 0, 99, 0, 0, 0, 99], triangles: triangles.map((v) => v + 1) };
  session.make('strays', strays, ...kSides, '--levels', '3');
  session.qelm('solve', 'strays.obj', ...kSides, '-o', 'field.csv', '-q');
  await session.open('strays');
  const csv = await session.offered('save-csv');
  const rows = (text) => text.trim().split('\n').slice(1).map((line) => line.split(',').map((word) => (word === '' ? '' : Number(word))));
  assert.deepEqual(rows(csv.text), rows(readFileSync(session.file('field.csv'), 'utf8')));
  assert.equal(csv.text.split('\n')[1], '0,99,0,0,');
  const [left, right] = [await session.onScreen([-2, 0, 0]), await session.onScreen([2, 0, 0])];
  assert.ok(right[0] - left[0] > 100, 'what is far away does not make the mesh small');
  await session.closed();
});

test('without WebGL 2 there is a still picture, and a sentence', async () => {
  const before = () => {
    const { getContext } = HTMLCanvasElement.prototype;
    HTMLCanvasElement.prototype.getContext = function (kind, ...more) {
      return kind.startsWith('webgl') ? null : getContext.call(this, kind, ...more);
    };
  };
  await session.open('flat', { before });
  assert.match(await session.text('#failure'), /has no WebGL 2/);
  const seen = await session.picture();
  const colours = await session.page.evaluate(() => [...qelmPage.surface.data.colours]);
  for (const x of [-1.7, -0.6, 0.6, 1.7]) {
    const at = seen.at(...(await session.onScreen([x, 0.3, 0])));
    const wanted = colours.slice(3 * Math.round(((x + 2) / 4) * 255)).slice(0, 3);
    assert.ok(Math.max(...at.map((c, k) => Math.abs(c - wanted[k]))) <= 14, `at x = ${x}: ${at} instead of ${wanted}`);
  }
  const curve = seen.at(...(await session.onScreen([-1, 0.33, 0])));
  assert.ok(Math.max(...curve) < 90, `${curve}`);
  await session.closed();
});

test('a large mesh is coarse while it moves slowly, and whole at rest', async () => {
  await session.open('large');
  const { page } = session;
  const seen = await page.evaluate(() => {
    const { surface } = qelmPage;
    const shown = () => [surface.surface, ...surface.coarse].filter((mesh) => mesh.visible).map((mesh) => mesh.geometry.index.count / 3);
    const states = [];
    for (const coarseness of [1, 2]) {
      surface.motion.coarseness = coarseness; // as on a slow machine
      surface.motion.stir();
      surface.drawNow();
      states.push({ triangles: shown(), drawn: surface.renderer.info.render.triangles });
      surface.motion.rest();
      states.push({ triangles: shown() });
    }
    return states;
  });
  for (const rest of [seen[1], seen[3]]) assert.deepEqual(rest.triangles, [320000]);
  for (const [state, most] of [[seen[0], 60000], [seen[2], 20000]]) {
    assert.equal(state.triangles.length, 1);
    assert.ok(state.triangles[0] > most / 8 && state.drawn < most, `${JSON.stringify(state)} of 320000`);
  }
  await session.closed();
});

test('coarse meshes and curves have fewer points and keep their shape', () => {
  const mesh = sheet(100, 100, [-1, 1, -1, 1]);
  const coarse = coarseIndex(Float32Array.from(mesh.positions), mesh.triangles, 400);
  let area = 0;
  const p = mesh.positions;
  for (let k = 0; k < coarse.length; k += 3) {
    const [a, b, c] = [3 * coarse[k], 3 * coarse[k + 1], 3 * coarse[k + 2]];
    area += ((p[b] - p[a]) * (p[c + 1] - p[a + 1]) - (p[b + 1] - p[a + 1]) * (p[c] - p[a])) / 2;
  }
  assert.ok(coarse.length < 3 * 1200 && area > 3.4 && area < 4.01, `${coarse.length / 3}, ${area}`);
  const field = Float64Array.from({ length: p.length / 3 }, (_, v) => Math.hypot(p[3 * v], p[3 * v + 1]));
  const curves = traceCurves(mesh, field, [0.5, 1.1]);
  const few = coarseCurves(curves, 60);
  assert.deepEqual([few.levels, few.closed], [curves.levels, curves.closed]);
  assert.ok(few.pointOf.length < 80);
  few.starts.slice(1).forEach((end, c) => assert.equal(few.pointOf[end - 1], curves.starts[c + 1] - 1, 'ends stay'));
});

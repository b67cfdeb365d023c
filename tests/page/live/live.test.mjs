// The live page in a browser: the library in it against the native one, and its sliders.
// Run by `scripts/playground --test`.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { openPage, startBrowser } from '../../../tools/page/browser.mjs';
import { Picture } from '../picture.mjs';
import { obj, sheet } from '../shapes.mjs';

const folder = mkdtempSync(path.join(tmpdir(), 'qelm-live-'));
const file = (name) => path.join(folder, name);
const qelm = (...words) => execFileSync(process.env.QELM_TOOL, words, { cwd: folder });

const kSides = ['--fix', 'box:-2,-9,-9,-2,9,9=0', '--fix', 'box:2,-9,-9,2,9,9=1'];
const withPoint = (value) => ['hills.obj', ...kSides, '--fix', `near:0.3,0.2,0=${value}`];

let chromium;
let page;

before(async () => {
  const hills = (x, y) => 0.5 * Math.sin(2 * x) * Math.cos(2 * y);
  writeFileSync(file('hills.obj'), obj(sheet(60, 40, [-2, 2, -1, 1], hills)));
  // 20,301 vertices
  writeFileSync(file('large.obj'), obj(sheet(200, 100, [-2, 2, -1, 1], hills)));
  // Every triangle has an angle of 166 degrees.
  const square = sheet(24, 24, [0, 4, 0, 1]);
  const leaning = square.positions.map((c, k) => (k % 3 === 0 ? c + 4 * square.positions[k + 1] : c));
  writeFileSync(file('obtuse.obj'), obj({ ...square, positions: leaning }));
  // A triangle without area: its corners lie on a line.
  const flat = sheet(4, 4, [0, 4, 0, 1]);
  const more = { positions: Float64Array.of(...flat.positions, 5, 0, 0, 6, 0, 0), triangles: Uint32Array.of(...flat.triangles, 4, 25, 26) };
  writeFileSync(file('flat.obj'), obj(more));
  writeFileSync(file('load.csv'), Array.from({ length: 41 * 61 }, (_, v) => `${Math.sin(v) / 500}\n`).join(''));
  writeFileSync(file('fixed.csv'), '5,0.25\n77,0.75\n');
  chromium = await startBrowser();
});

after(async () => {
  await chromium.close();
  rmSync(folder, { recursive: true });
});

async function open(words, options) {
  qelm('view', ...words, '--page', process.env.QELM_LIVE_PAGE, '-o', 'live.html', '-q');
  page = await openPage(chromium.browser, file('live.html'), options);
}

async function closed() {
  assert.deepEqual(page.complaints, []);
  await page.close();
}

/** The page's field and the native tool's differ by rounding. */
async function sameField(words) {
  qelm('solve', ...words, '-o', 'field.csv', '-q');
  const wanted = readFileSync(file('field.csv'), 'utf8').trim().split('\n').slice(1).map((line) => Number(line.split(',')[4]));
  const field = await page.evaluate(() => [...qelmPage.surface.field]);
  assert.equal(field.length, wanted.length);
  const size = Math.max(...wanted.map(Math.abs));
  let worst = 0;
  field.forEach((value, v) => (worst = Math.max(worst, Math.abs(value - wanted[v]))));
  assert.ok(worst <= 1e-12 * size, `off by ${worst}`);
  return { worst: worst / size, range: [Math.min(...wanted), Math.max(...wanted)] };
}

/** The curves on the page are those that the native tool cuts, in length and number. */
async function sameCurves(words) {
  const levels = await page.evaluate(() => qelmPage.levels);
  qelm('curves', ...words, '--at', levels.join(), '-o', 'curves.json', '-q');
  const { curves } = JSON.parse(readFileSync(file('curves.json')));
  const wanted = levels.map(() => 0);
  for (const { level, points, closed: isClosed } of curves) {
    const all = isClosed ? [...points, points[0]] : points;
    for (let k = 1; k < all.length; ++k) wanted[level] += Math.hypot(...all[k].map((c, i) => c - all[k - 1][i]));
  }
  const lengths = await page.evaluate(() => {
    const { segments, place } = qelmPage.surface;
    const sums = qelmPage.levels.map(() => 0);
    segments.levelOf.forEach((l, k) => {
      const [a, b, c, d, e, f] = segments.points.subarray(6 * k, 6 * k + 6);
      sums[l] += Math.hypot(a - d, b - e, c - f) * place.radius;
    });
    return sums;
  });
  assert.ok(levels.length > 3);
  lengths.forEach((length, l) => {
    assert.ok(wanted[l] > 0 && Math.abs(length / wanted[l] - 1) < 1e-4, `level ${levels[l]}: ${length}, ${wanted[l]}`);
  });
}

const moveSlider = async (label, value) => {
  await page.$eval(
    `input[type=range][aria-label="Value of ${label}"]`,
    (slider, wanted) => {
      slider.value = wanted;
      slider.dispatchEvent(new Event('input'));
    },
    value,
  );
  await page.waitForFunction(() => qelmPage.awaited === undefined);
  return page.$eval(`input[type=range][aria-label="Value of ${label}"]`, (slider) => slider.value);
};

test('the page solves what the native library solves', async (t) => {
  await open([...withPoint(1.5), '--levels', '9']);
  const { worst } = await sameField(withPoint(1.5));
  t.diagnostic(`differs by ${worst} of the largest value`);
  await sameCurves(withPoint(1.5));
  await closed();
});

test('moving a slider solves again and cuts again', async () => {
  await open([...withPoint(1.5), '--levels', '9']);
  const before = Picture.fromPng(Buffer.from(await page.screenshot()));
  const system = await page.evaluate(() => qelmPage.system.handle);
  const value = await moveSlider('near:0.3,0.2,0', -0.4);
  await sameField(withPoint(value));
  await sameCurves(withPoint(value));
  assert.equal(await page.evaluate(() => qelmPage.system.handle), system, 'the factorisation stays');
  const shown = await page.$eval('input[type=number][aria-label^="Value of near"]', (box) => Number(box.value));
  assert.ok(Math.abs(shown - value) < 1e-6);
  const after = Picture.fromPng(Buffer.from(await page.screenshot()));
  assert.ok(before.difference(after) > 0.02);
  await closed();
});

test('levels keep their steps while values move', async () => {
  await open([...withPoint(0.5), '--levels', '3']);
  assert.deepEqual(await page.evaluate(() => qelmPage.levels), [0.25, 0.5, 0.75]);
  await moveSlider('box:2,-9,-9,2,9,9', 1.5);
  assert.deepEqual(await page.evaluate(() => qelmPage.levels), [0.25, 0.5, 0.75, 1, 1.25]);
  await page.$eval('#level-count', (box) => {
    box.value = 2;
    box.dispatchEvent(new Event('change'));
  });
  assert.deepEqual(await page.evaluate(() => qelmPage.levels), [0.5, 1]);
  await moveSlider('box:-2,-9,-9,-2,9,9', -0.5);
  assert.deepEqual(await page.evaluate(() => qelmPage.levels), [0, 0.5, 1]);
  await closed();
});

test('keys and the number box move values, and the button brings them back', async () => {
  await open(withPoint(0.5));
  await page.focus('input[type=range][aria-label^="Value of near"]');
  for (let k = 0; k < 12; ++k) await page.keyboard.press('ArrowRight');
  await page.waitForFunction(() => qelmPage.awaited === undefined);
  const value = await page.$eval('input[type=range][aria-label^="Value of near"]', (slider) => slider.value);
  assert.ok(value > 0.55);
  await sameField(withPoint(value));
  await page.click('input[type=number][aria-label^="Value of near"]', { count: 3 });
  await page.keyboard.type('7.25');
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => qelmPage.awaited === undefined && qelmPage.surface.range.high > 7);
  await sameField(withPoint(7.25));
  await page.click('#reset-values');
  await page.waitForFunction(() => qelmPage.awaited === undefined && qelmPage.surface.range.high < 7);
  await sameField(withPoint(0.5));
  await closed();
});

test('--levels 19 gives 19 levels, whatever the solve rounds', async () => {
  for (const [low, high] of [[0, 1], [0.1, 0.7], [-3, 1e-3]]) {
    await open(['hills.obj', '--fix', `box:-2,-9,-9,-2,9,9=${low}`, '--fix', `box:2,-9,-9,2,9,9=${high}`, '--levels', '19']);
    assert.equal(await page.evaluate(() => qelmPage.levels.length), 19, `${low} to ${high}`);
    await closed();
  }
});

test('moves can be undone, and so can going back to what was prescribed', async () => {
  await open([...withPoint(1.5), '--levels', '9']);
  const values = () => page.evaluate(() => qelmPage.current);
  assert.equal(await page.$eval('#undo', (button) => button.disabled), true);
  const put = async (value) => {
    await page.click('input[type=number][aria-label^="Value of near"]', { count: 3 });
    await page.keyboard.type(String(value));
    await page.keyboard.press('Enter');
    await page.waitForFunction(() => qelmPage.awaited === undefined);
  };
  await put(0.75);
  await put(-0.25);
  await page.click('#undo');
  assert.deepEqual(await values(), [0, 1, 0.75]);
  await page.waitForFunction(() => qelmPage.awaited === undefined);
  await sameField(withPoint(0.75));
  await page.click('#reset-values');
  assert.deepEqual(await values(), [0, 1, 1.5]);
  await page.focus('#canvas');
  await page.keyboard.down('Control');
  await page.keyboard.press('z');
  await page.keyboard.press('z');
  await page.keyboard.up('Control');
  assert.deepEqual(await values(), [0, 1, 1.5], 'both moves are undone');
  assert.equal(await page.$eval('#undo', (button) => button.disabled), true);
  await closed();
});

test('a link has the values, too', async () => {
  await open([...withPoint(1.5), '--levels', '9']);
  await moveSlider('near:0.3,0.2,0', -0.4);
  await page.evaluate(() => (qelmPage.moved(), qelmPage.setLevelCount(5)));
  await page.waitForFunction(() => location.hash.includes('values='));
  const [fragment, levels] = await page.evaluate(() => [location.hash, qelmPage.levels]);
  const value = await page.evaluate(() => qelmPage.current[2]);
  await closed();
  await open([...withPoint(1.5), '--levels', '9'], { fragment });
  await page.waitForFunction((wanted) => qelmPage.current[2] === wanted, {}, value);
  await sameField(withPoint(value));
  assert.deepEqual(await page.evaluate(() => qelmPage.levels), levels);
  await closed();
});

test('sliders can be reached on a phone, and fingers move them', async () => {
  await open([...withPoint(1.5), '--levels', '9'], { width: 390, height: 844, touch: true });
  await page.tap('#tabs [data-tab=facts]');
  const slider = await page.$('input[type=range][aria-label^="Value of near"]');
  const box = await slider.boundingBox();
  assert.ok(box.width > 200 && box.height >= 40 && box.x >= 0 && box.x + box.width <= 390 && box.y + box.height < 800, JSON.stringify(box));
  const before = await page.evaluate(() => qelmPage.current[2]);
  await page.touchscreen.tap(box.x + 0.2 * box.width, box.y + box.height / 2);
  await page.waitForFunction((was) => qelmPage.current[2] < was - 0.3 && qelmPage.awaited === undefined, {}, before);
  await sameField(withPoint(await page.evaluate(() => qelmPage.current[2])));
  await closed();
});

test('on a desk all sliders are seen at once', async () => {
  await open([...withPoint(1.5), '--levels', '9'], { width: 1400, height: 900 });
  const [all, seen] = await page.$eval('#values', (list) => [list.scrollHeight, list.clientHeight]);
  assert.ok(seen > 200 && all <= seen, `${seen} of ${all} pixels`);
  await closed();
});

test('loads and the values of a file are kept', async () => {
  const words = (value) => ['hills.obj', '--fix-file', 'fixed.csv', '--load', 'load.csv', '--fix', `box:2,-9,-9,2,9,9=${value}`];
  await open(words(1));
  assert.equal(await page.$$eval('#facts input[type=range]', (sliders) => sliders.length), 1);
  await sameField(words(1));
  const value = await moveSlider('box:2,-9,-9,2,9,9', 0.8);
  await sameField(words(value));
  await closed();
});

const kObtuse = ['obtuse.obj', '--fix', 'boundary=0', '--fix', 'near:4,0.5,0=1'];
const isDrawn = () => page.waitForFunction(() => qelmPage.awaited === undefined);
const robustState = () => page.evaluate(() => [qelmPage.isRobust, document.getElementById('robust').checked]);

test('a switch builds robustly or plainly, and keeps the conditions', async (t) => {
  await open([...kObtuse, '--levels', '9']);
  assert.deepEqual(await robustState(), [false, false]);
  const plain = await sameField(kObtuse);
  assert.ok(plain.range[0] < -0.005, `plain range ${plain.range}`);
  const plainField = await page.evaluate(() => [...qelmPage.surface.field]);
  await page.click('#robust');
  await isDrawn();
  assert.deepEqual(await robustState(), [true, true]);
  const robust = await sameField([...kObtuse, '--robust']);
  const field = await page.evaluate(() => [...qelmPage.surface.field]);
  assert.ok(Math.min(...field) >= -1e-12 && Math.max(...field) <= 1 + 1e-12, `range ${robust.range}`);
  const most = Math.max(...field.map((value, v) => Math.abs(value - plainField[v])));
  assert.ok(most > 1e-3, `differs by ${most}`);
  t.diagnostic(`plain ${plain.range}, robust ${robust.range}, differ by ${most}`);

  const moved = kObtuse.map((word) => word.replace('=1', '=0.2'));
  await page.click('input[type=number][aria-label^="Value of near:4"]', { count: 3 });
  await page.keyboard.type('0.2');
  await page.keyboard.press('Enter');
  await isDrawn();
  await sameField([...moved, '--robust']);
  await page.focus('#robust');
  await page.keyboard.press('Space');
  await isDrawn();
  assert.deepEqual(await robustState(), [false, false]);
  await sameField(moved);

  await page.click('#undo');
  await isDrawn();
  assert.deepEqual(await robustState(), [true, true]);
  await sameField([...moved, '--robust']);
  await page.click('#undo');
  await page.click('#undo');
  await isDrawn();
  assert.deepEqual(await robustState(), [false, false]);
  assert.equal(await page.$eval('#undo', (button) => button.disabled), true);
  await sameField(kObtuse);
  await closed();
});

test('a link says whether construction is robust', async () => {
  await open([...kObtuse, '--levels', '9']);
  await page.click('#robust');
  await page.waitForFunction(() => location.hash.includes('robust=1'));
  const fragment = await page.evaluate(() => location.hash);
  await page.click('#robust');
  await page.waitForFunction(() => !location.hash.includes('robust'));
  await closed();
  await open([...kObtuse, '--levels', '9'], { fragment });
  await page.waitForFunction(() => qelmPage.isRobust);
  assert.deepEqual(await robustState(), [true, true]);
  await sameField([...kObtuse, '--robust']);
  await closed();
});

test('a mesh that needs robust construction has it, and says why it stays', async () => {
  const words = ['flat.obj', '--fix', 'near:0,0,0=0', '--fix', 'near:4,1,0=1', '--robust'];
  await open(words);
  assert.deepEqual(await robustState(), [true, true]);
  await sameField(words);
  await page.click('#robust');
  assert.deepEqual(await robustState(), [true, true]);
  assert.match(await page.$eval('#times', (line) => line.textContent), /^Robust stays on: ./);
  assert.equal(await page.$eval('#undo', (button) => button.disabled), true);
  await sameField(words);
  await closed();
});

test('the switch has a name, a role, and room for a finger', async () => {
  await open(kObtuse, { width: 390, height: 844, touch: true });
  await page.tap('#tabs [data-tab=facts]');
  const toggle = await page.$('#robust');
  const { role, name, description } = await page.evaluate(() => {
    const element = document.getElementById('robust');
    return {
      role: element.role,
      name: element.labels[0].textContent,
      description: document.getElementById(element.getAttribute('aria-describedby')).textContent,
    };
  });
  assert.equal(role, 'switch');
  assert.equal(name, 'Robust');
  assert.match(description, /triangles/);
  const box = await toggle.boundingBox();
  assert.ok(box.width >= 40 && box.height >= 40 && box.x >= 0 && box.y + box.height < 800, JSON.stringify(box));
  await page.touchscreen.tap(box.x + box.width / 2, box.y + box.height / 2);
  await page.waitForFunction(() => qelmPage.isRobust && qelmPage.awaited === undefined);
  await sameField([...kObtuse, '--robust']);
  await closed();
});

test('20,000 vertices follow a slider at interactive speed', async (t) => {
  await open(['large.obj', ...kSides, '--fix', 'near:0.3,0.2,0=1.5', '--levels', '20']);
  const times = await page.evaluate(async () => {
    const all = [];
    for (let k = 0; k < 60; ++k) {
      const began = performance.now();
      qelmPage.prescribe(2, 1.5 - k / 30);
      qelmPage.solve();
      all.push({ ...qelmPage.times, move: performance.now() - began });
    }
    return all.slice(10);
  });
  const median = (name) => times.map((t) => t[name]).sort((a, b) => a - b)[times.length >> 1];
  t.diagnostic(
    `construction ${times[0].construct.toFixed(0)} ms; median of ${times.length} moves: solve ` +
      `${median('solve').toFixed(1)} ms, cut ${median('cut').toFixed(1)} ms, all ${median('move').toFixed(1)} ms`,
  );
  await sameField(['large.obj', ...kSides, '--fix', `near:0.3,0.2,0=${1.5 - 59 / 30}`]);
  await closed();
});

// The page of `qelm view` in a browser: looks, pointer, wheel, keys, controls.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { openPage, startBrowser } from '../../tools/page/browser.mjs';
import { Picture } from './picture.mjs';
import { obj, sheet } from './shapes.mjs';

const folder = mkdtempSync(path.join(tmpdir(), 'qelm-page-'));
const file = (name) => path.join(folder, name);
const qelm = (...words) => execFileSync(process.env.QELM_TOOL, words, { cwd: folder });

// Seen from above, x to the right: the field is (x + 2) / 4.
const kFlat = ['flat.obj', '--fix', 'box:-2,-9,0,-2,9,0=0', '--fix', 'box:2,-9,0,2,9,0=1'];
const kBumps = ['bumps.obj', '--fix', 'boundary=0', '--fix', 'near:0.5,0.5,0=80'];

let chromium;
let page;

before(async () => {
  writeFileSync(file('flat.obj'), obj(sheet(40, 20, [-2, 2, -1, 1])));
  const bump = (x, y) => 0.5 * Math.sin(2 * x) * Math.cos(2 * y);
  writeFileSync(file('bumps.obj'), obj(sheet(60, 60, [-2, 2, -2, 2], bump)));
  qelm('view', ...kFlat, '--levels', '6', '-o', 'flat.html', '-q');
  qelm('view', ...kBumps, '--every', '10', '--view', '0.55,-1,0.62', '-o', 'bumps.html', '-q');
  chromium = await startBrowser();
});

after(async () => {
  await chromium.close();
  rmSync(folder, { recursive: true });
});

const open = async (name, options) => (page = await openPage(chromium.browser, file(name), options));

/** What holds after every test. */
async function closed() {
  assert.deepEqual(page.complaints, []);
  await page.close();
}

const facts = () =>
  page.evaluate(() => ({
    camera: qelmPage.surface.camera.position.toArray(),
    levels: qelmPage.levels,
    segments: qelmPage.surface.segments.levelOf.length,
    shown: qelmPage.surface.shown,
    theme: document.documentElement.dataset.theme,
  }));

/** The page's picture, once what was asked for is drawn. */
async function picture() {
  await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
  return Picture.fromPng(Buffer.from(await page.screenshot()));
}

/** Where a point of the mesh is on the screen. */
const onScreen = (point) =>
  page.evaluate((p) => {
    const { surface } = qelmPage;
    const local = p.map((c, k) => (c - surface.place.centre[k]) / surface.place.radius);
    const at = surface.camera.position.clone().set(...local).project(surface.camera);
    return [((at.x + 1) / 2) * surface.width, ((1 - at.y) / 2) * surface.height];
  }, point);

async function pointAt(point) {
  await page.mouse.move(...(await onScreen(point)));
  await page.waitForFunction(() => !document.getElementById('reading').hidden);
  return page.evaluate(() => {
    const [value, place] = document.getElementById('reading').children;
    return { value: Number(value.textContent.replace('−', '-')), place: place.textContent };
  });
}

test('the page says what it shows, and complains of nothing', async () => {
  await open('flat.html');
  const text = await page.evaluate(() => document.getElementById('facts').innerText);
  assert.match(text, /^flat\.obj\s+861 vertices, 1,600 triangles/);
  assert.match(text, /box:-2,-9,0,-2,9,0 = 0\s+21 vertices/);
  assert.equal(await page.title(), 'flat.obj – qelm');
  const values = await page.evaluate(() =>
    [...document.querySelectorAll('#legend text')].map((t) => t.textContent),
  );
  assert.deepEqual(values, ['0', '1', '0.2', '0.4', '0.6', '0.8']);
  assert.equal(await page.evaluate(() => document.querySelectorAll('#legend .level').length), 6);
  assert.equal(await page.evaluate(() => document.getElementById('failure').hidden), true);
  await closed();
});

test('colours on the surface are the values\u2019, largest yellow', async () => {
  await open('flat.html');
  await page.evaluate(() => qelmPage.show({ curves: false, fixed: false }));
  const seen = await picture();
  const colours = await page.evaluate(() => [...qelmPage.surface.data.colours]);
  for (const x of [-1.9, -1, 0, 1, 1.9]) {
    const at = seen.at(...(await onScreen([x, 0.3, 0])));
    const step = Math.round(((x + 2) / 4) * 255);
    const wanted = colours.slice(3 * step, 3 * step + 3);
    const off = Math.max(...at.map((c, k) => Math.abs(c - wanted[k])));
    assert.ok(off <= 12, `at x = ${x}: ${at} instead of ${wanted}`);
  }
  await closed();
});

test('the pointer reads the value of the place under it', async () => {
  await open('flat.html');
  for (const [x, y] of [[0, 0], [-1.37, 0.61], [1.63, -0.83]]) {
    const { value, place } = await pointAt([x, y, 0]);
    assert.ok(Math.abs(value - (x + 2) / 4) < 2e-3, `${value} at ${x}`);
    const [px, py, pz] = place.replaceAll('−', '-').split(', ').map(Number);
    assert.ok(Math.abs(px - x) < 8e-3 && Math.abs(py - y) < 8e-3 && pz === 0, place);
    assert.ok(Math.abs(value - (px + 2) / 4) < 1e-5, 'value and place agree');
  }
  await page.mouse.move(600, 40);
  await page.waitForFunction(() => document.getElementById('reading').hidden);
  await closed();
});

test('the pointer reads the front of a curved surface', async () => {
  await open('bumps.html');
  const height = (x, y) => 0.5 * Math.sin(2 * x) * Math.cos(2 * y);
  // The last one lies behind a hill, whose front is at y = 0.03.
  for (const [x, y, isHidden] of [[0.78, 0], [-0.78, -1.57], [0.5, 0.4, true]]) {
    const { value, place } = await pointAt([x, y, height(x, y)]);
    const [px, py, pz] = place.replaceAll('−', '-').split(', ').map(Number);
    if (isHidden) assert.ok(py < 0.2, place);
    else assert.ok(Math.abs(px - x) < 0.02 && Math.abs(py - y) < 0.02, place);
    assert.ok(Math.abs(pz - height(px, py)) < 2e-3, place);
    assert.ok(value > 0 && value < 80, `${value}`);
  }
  await closed();
});

test('dragging turns the mesh, the wheel zooms, and the button resets', async () => {
  await open('bumps.html');
  const start = (await facts()).camera;
  const before = await picture();
  await page.mouse.move(500, 400);
  await page.mouse.down();
  await page.mouse.move(620, 430, { steps: 4 });
  await page.mouse.up();
  const turned = (await facts()).camera;
  assert.ok(distance(start, turned) > 0.3, `${start} -> ${turned}`);
  assert.ok(before.difference(await picture()) > 0.02, 'the picture changed');
  await page.mouse.wheel({ deltaY: -600 });
  await page.waitForFunction(
    (before) => qelmPage.surface.camera.position.length() < 0.9 * before,
    {},
    Math.hypot(...turned),
  );
  await page.click('#reset');
  assert.ok(distance((await facts()).camera, start) < 1e-9);
  // After a turn the mesh is drawn in full again as soon as there is time.
  let difference = 1;
  for (let k = 0; k < 50 && difference >= 0.002; ++k) {
    await new Promise((later) => setTimeout(later, 100));
    difference = before.difference(await picture());
  }
  assert.ok(difference < 0.002, 'the picture is back');
  await closed();
});

test('keys turn, move, zoom and reset', async () => {
  await open('bumps.html');
  await page.focus('#canvas');
  const start = (await facts()).camera;
  const press = async (...keys) => {
    for (const key of keys) await page.keyboard.press(key);
    return (await facts()).camera;
  };
  const turned = await press('ArrowLeft', 'ArrowUp');
  assert.ok(distance(turned, start) > 0.2);
  assert.ok(Math.abs(Math.hypot(...turned) - Math.hypot(...start)) < 0.1, 'as far away as before');
  const nearer = await press('+', '+', '+');
  assert.ok(Math.hypot(...nearer) < 0.8 * Math.hypot(...turned));
  await page.keyboard.down('Shift');
  const moved = await press('ArrowRight');
  await page.keyboard.up('Shift');
  assert.ok(distance(moved, nearer) > 0.05);
  assert.ok(distance(await press('0'), start) < 1e-9);
  await closed();
});

test('slider and box change the number of curves', async () => {
  await open('flat.html');
  const start = await facts();
  assert.deepEqual(start.levels, [1, 2, 3, 4, 5, 6].map((k) => k / 7));
  assert.equal(start.segments, 6 * 40);
  const few = await picture();
  await page.focus('#level-slider');
  for (let k = 0; k < 6; ++k) await page.keyboard.press('ArrowRight');
  const more = await facts();
  assert.equal(more.levels.length, 12);
  assert.equal(more.segments, 12 * 40);
  assert.ok(few.difference(await picture()) > 0.001);
  await page.click('#level-count', { count: 3 });
  await page.keyboard.type('3');
  await page.keyboard.press('Enter');
  assert.deepEqual((await facts()).levels, [0.25, 0.5, 0.75]);
  assert.equal(await page.$eval('#level-slider', (slider) => slider.value), '3');
  await page.$eval('#level-count', (box) => {
    box.value = '100000';
    box.dispatchEvent(new Event('change'));
  });
  assert.equal((await facts()).levels.length, 100);
  await closed();
});

test('the levels of --every stay until the number is changed', async () => {
  await open('bumps.html');
  assert.deepEqual((await facts()).levels, [10, 20, 30, 40, 50, 60, 70]);
  await page.focus('#canvas');
  await page.keyboard.press(']');
  assert.equal((await facts()).levels.length, 8);
  await closed();
});

test('curves are as long as the ones that the command line cuts', async () => {
  qelm('curves', ...kBumps, '--every', '10', '-o', 'bumps.json', '-q');
  const { curves } = JSON.parse(readFileSync(file('bumps.json')));
  const wanted = Array(7).fill(0);
  for (const { level, points, closed: isClosed } of curves) {
    const ends = isClosed ? [...points, points[0]] : points;
    for (let k = 1; k < ends.length; ++k) wanted[level] += distance(ends[k - 1], ends[k]);
  }
  await open('bumps.html');
  const lengths = await page.evaluate(() => {
    const { segments, place } = qelmPage.surface;
    const sums = Array(7).fill(0);
    segments.levelOf.forEach((l, k) => {
      const [a, b, c, d, e, f] = segments.points.subarray(6 * k, 6 * k + 6);
      sums[l] += Math.hypot(a - d, b - e, c - f) * place.radius;
    });
    return sums;
  });
  lengths.forEach((length, l) => {
    assert.ok(wanted[l] > 0 && Math.abs(length / wanted[l] - 1) < 1e-4, `${l}: ${length}, ${wanted[l]}`);
  });
  await closed();
});

test('toggles show and hide', async () => {
  await open('bumps.html');
  for (const [name, key] of Object.entries({ heatMap: 'h', curves: 'c', edges: 'e', fixed: 'f' })) {
    const shown = (await facts()).shown[name];
    const before = await picture();
    await page.click(`label:has(#show-${name})`);
    assert.equal((await facts()).shown[name], !shown);
    assert.ok(before.difference(await picture()) > 0.0005, `${name} can be seen`);
    await page.focus('#canvas');
    await page.keyboard.press(key);
    assert.equal((await facts()).shown[name], shown);
    assert.equal(await page.$eval(`#show-${name}`, (box) => box.checked), shown);
  }
  await closed();
});

test('the theme follows the system until it is chosen', async () => {
  await open('flat.html', { theme: 'dark' });
  assert.equal((await facts()).theme, 'dark');
  const dark = (await picture()).at(600, 780);
  assert.ok(Math.max(...dark) < 60, `${dark}`);
  await page.click('#theme');
  assert.equal((await facts()).theme, 'light');
  const light = (await picture()).at(600, 780);
  assert.ok(Math.min(...light) > 200, `${light}`);
  assert.equal(await page.$eval('#theme', (button) => button.textContent), 'Theme: light');
  await closed();
});

test('every control can be reached and has a name', async () => {
  await open('flat.html');
  const names = [];
  const wanted = ['Panels', 'Levels', 'Number of levels', 'Heat map', 'Curves', 'Values', 'Edges', 'Fixed', 'List of levels'];
  wanted.push('Iso', 'Front', 'Back', 'Left', 'Right', 'Top', 'Reset view', 'Measure', 'Theme: auto', 'Keys', 'Save');
  for (let k = 0; k <= wanted.length; ++k) {
    await page.keyboard.press('Tab');
    names.push(
      await page.evaluate(() => {
        const { activeElement: at } = document;
        return at.ariaLabel || at.labels?.[0]?.innerText || at.textContent;
      }),
    );
  }
  assert.match(names[0], /^The mesh with its heat map/);
  assert.deepEqual(names.slice(1), wanted);
  await page.focus('#keys');
  await page.keyboard.press('Enter');
  assert.equal(await page.$eval('#key-list', (list) => list.hidden), false);
  await page.focus('#canvas');
  await page.keyboard.press('v');
  const said = await page.$eval('#announcement', (said) => said.textContent);
  assert.match(said, /^Value in the middle: 0\.\d+$/);
  await closed();
});

test('a picture is saved with its scale', async () => {
  await open('flat.html');
  const url = await page.evaluate(async () => {
    let link;
    const click = HTMLAnchorElement.prototype.click;
    HTMLAnchorElement.prototype.click = function () {
      link = { name: this.download, url: this.href };
    };
    document.getElementById('save-details').open = true;
    document.getElementById('save').click();
    while (!link) await new Promise((done) => setTimeout(done, 10));
    HTMLAnchorElement.prototype.click = click;
    return link;
  });
  assert.equal(url.name, 'flat.png');
  const saved = Picture.fromPng(Buffer.from(url.url.split(',')[1], 'base64'));
  const seen = await picture();
  assert.deepEqual([saved.width, saved.height], [seen.width, seen.height]);
  const scale = await page.$eval('#legend rect', (bar) => {
    const { left, top, width, height } = bar.getBoundingClientRect();
    return [left + width / 2, top + height - 3];
  });
  for (const place of [await onScreen([1.4, 0.2, 0]), scale]) {
    const [a, b] = [saved.at(...place), seen.at(...place)];
    assert.ok(Math.max(...a.map((c, k) => Math.abs(c - b[k]))) < 12, `${a} and ${b} at ${place}`);
  }
  await closed();
});

test('loading says how far it is, and leaves nothing behind', async () => {
  const watch = () => {
    window.seen = [];
    new MutationObserver(() => {
      const text = document.getElementById('progress')?.textContent ?? '';
      if (text !== '' && window.seen.at(-1) !== text) window.seen.push(text);
    }).observe(document, { subtree: true, childList: true, characterData: true });
  };
  await open('flat.html', { before: watch });
  const triangles = await page.evaluate(() => qelmPage.facts.triangles.toLocaleString('en'));
  const seen = await page.evaluate(() => window.seen);
  assert.deepEqual(seen.slice(-3), ['reading', `${triangles} triangles`, 'drawing'].map((step) => `Loading flat.obj: ${step}`));
  assert.ok(await page.$eval('#progress', (element) => element.hidden));
  await closed();
});

test('a page without its mesh says so', async () => {
  const text = readFileSync(file('flat.html'), 'utf8');
  writeFileSync(file('damaged.html'), text.replace(/(id="page-mesh"[^>]*>)[^<]{200}/, '$1'));
  const damaged = await chromium.browser.newPage();
  await damaged.goto(`file://${file('damaged.html')}`);
  await damaged.waitForFunction(() => document.getElementById('progress').hidden);
  const said = await damaged.$eval('#failure', (box) => (box.hidden ? '' : box.textContent));
  assert.match(said, /cannot be shown: the page holds no mesh/);
  await damaged.close();
});

function distance(a, b) {
  return Math.hypot(...a.map((c, k) => c - b[k]));
}

// Pages on screens of every size: what cards cover, how the mesh stands, fingers, thin curves.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { Session } from './session.mjs';
import { animal, oneTriangle, roof, sheet } from './shapes.mjs';

const session = new Session();
const kScreens = [
  { width: 1400, height: 900 },
  { width: 768, height: 1024 },
  { width: 390, height: 844, touch: true },
  { width: 844, height: 390, touch: true },
  { width: 320, height: 568, touch: true },
  { width: 568, height: 320, touch: true },
];
const kPhone = { width: 390, height: 844, touch: true };
const kFinger = 40; // pixels

before(async () => {
  session.make('roof', roof(), '--fix', 'loop:0=0', '--fix', 'loop:1=1', '--fix', 'loop:2=0.5', '--levels', '19');
  session.make('animal', animal(), '--fix', 'near:0,0.6,2=30', '--fix', 'near:0,0,-0.8=12.5', '--levels', '9');
  session.make('dense', sheet(60, 60, [-1, 1, -1, 1]), '--fix', 'box:-1,-9,0,-1,9,0=0', '--fix', 'box:1,-9,0,1,9,0=1', '--every', '0.005');
  const ends = (low, high) => ['--fix', `vertex:0=${low}`, '--fix', `vertex:1=${high}`];
  session.make('tiny', oneTriangle(), ...ends(0, 1e-12));
  session.make('long', oneTriangle(), ...ends(-123456.789, 0.25), '--unit', 'kN/m²');
  session.make('narrow', oneTriangle(), ...ends(6512000.25, 6512000.75));
  await session.start();
});
after(() => session.end());

/** Rectangles of all that lies on the mesh's window. */
const cards = () =>
  session.page.evaluate(() =>
    ['header', '#facts', '#values', '#curves', '#view', '#tabs', '#answer', '#scale-card']
      .map((name) => [name, document.querySelector(name)])
      // On phones the facts have no box of their own; elsewhere their header is inside of it.
      .filter(([name]) => qelmPage.panels.areTabs !== ['#facts'].includes(name))
      .filter(([name]) => qelmPage.panels.areTabs || !['header', '#values'].includes(name))
      .map(([name, element]) => ({ name, ...element.getBoundingClientRect().toJSON() }))
      .filter(({ width, height }) => width > 0 && height > 0),
  );
const overlap = (a, b) => a.left < b.right - 1 && a.right > b.left + 1 && a.top < b.bottom - 1 && a.bottom > b.top + 1;

async function nothingOverlaps(where, withMesh) {
  await session.settled();
  const { width, height } = session.page.viewport();
  const all = await cards();
  all.forEach((card, k) => {
    assert.ok(card.left >= -1 && card.top >= -1 && card.right <= width + 1 && card.bottom <= height + 1, `${where}: ${JSON.stringify(card)}`);
    for (const other of all.slice(0, k)) assert.ok(!overlap(card, other), `${where}: ${card.name} on ${other.name}`);
  });
  if (!withMesh) return;
  const mesh = await session.page.evaluate(() => qelmPage.surface.extent());
  for (const card of all) assert.ok(!overlap(card, mesh), `${where}: the mesh is under ${card.name}`);
}

async function targetsAreLarge(where) {
  const small = await session.page.$$eval(
    'button, summary, .toggles label, input[type=range], input[type=number], #level-list label',
    (elements, least) =>
      elements
        .map((element) => [element.id || element.textContent, element.getBoundingClientRect()])
        .filter(([, { width, height }]) => width > 0 && (height < least || width < least))
        .map(([name, { width, height }]) => `${name}: ${width} x ${height}`),
    kFinger,
  );
  assert.deepEqual(small, [], where);
}

for (const screen of kScreens)
  test(`cards leave the mesh its room at ${screen.width} x ${screen.height}`, async () => {
    // The body once on a desk and once on a phone.
    for (const name of [1400, 390].includes(screen.width) ? ['roof', 'animal'] : ['roof']) {
      await session.open(name, screen);
      await nothingOverlaps(name, true);
      const filled = await session.page.evaluate(() => {
        const { surface } = qelmPage;
        const { left, right, top, bottom } = surface.extent();
        const free = surface.rectangle;
        return Math.max((right - left) / (free.right - free.left), (bottom - top) / (free.bottom - free.top));
      });
      assert.ok(filled > 0.85, `${name} fills ${filled}`);
      if (name === 'animal') {
        await session.closed();
        break;
      }
      const area = await session.page.evaluate(() => {
        const { left, right, top, bottom } = qelmPage.surface.rectangle;
        return ((right - left) * (bottom - top)) / (innerWidth * innerHeight);
      });
      assert.ok(area > 0.45, `${area} of the window are free`);
      await session.page.$$eval('#side details', (all) => all.forEach((details) => (details.open = true)));
      if (!screen.touch) await nothingOverlaps('with all lists open', false);
      for (const tab of screen.touch ? await session.page.$$('#tabs button') : []) {
        await tab.tap();
        await nothingOverlaps('with a panel open', true);
        await targetsAreLarge('with a panel open');
      }
      if (screen.touch) assert.ok(await session.page.$eval('#view', (panel) => panel.offsetHeight > 100));
      await session.closed();
    }
  });

test('a closed mesh stands upright, and buttons and keys show its sides', async () => {
  await session.open('animal');
  const { page } = session;
  // The feet, y = -1, are at the bottom and the head, +z, in front.
  const [feet, back] = [await session.onScreen([0, -1, 0]), await session.onScreen([0, 0.5, 0])];
  assert.ok(feet[1] > back[1] + 100 && Math.abs(feet[0] - back[0]) < 20, `${feet}, ${back}`);
  const direction = () =>
    page.evaluate(() => {
      const { camera } = qelmPage.surface;
      return camera.getWorldDirection(camera.position.clone()).toArray().map((c) => Math.round(10 * c) / 10 || 0);
    });
  const wanted = { front: [0, 0, -1], back: [0, 0, 1], left: [1, 0, 0], right: [-1, 0, 0], top: [0, -1, 0], iso: [-0.4, -0.5, -0.8] };
  const keys = { front: '1', back: '2', left: '3', right: '4', top: '5', iso: '6' };
  for (const [name, along] of Object.entries(wanted)) {
    await page.click(`#views [data-view=${name}]`);
    assert.deepEqual(await direction(), along, name);
    await page.click('#reset');
    await page.focus('#canvas');
    await page.keyboard.press(keys[name]);
    assert.deepEqual(await direction(), along, `${name} by key`);
  }
  // Turning goes on from there, upright.
  await page.keyboard.press('1');
  await page.keyboard.press('ArrowLeft');
  const top = await session.onScreen([0, 0.5, 0]);
  assert.ok((await session.onScreen([0, -1, 0]))[1] > top[1] + 100);
  await session.closed();
});

test('page and drawing show the same side', async () => {
  const fixes = ['--fix', 'near:0,0.6,2=30', '--fix', 'near:0,0,-0.8=12.5'];
  session.qelm('curves', 'animal.obj', ...fixes, '--at', '14,29', '-o', 'animal.svg', '-q');
  const svg = readFileSync(session.file('animal.svg'), 'utf8');
  // Where the drawing has the curve at the muzzle (29), and the one at the tail.
  const [tail, muzzle] = ['14', '29'].map((level) =>
    svg.match(new RegExp(`data-level="${level}">.*?d="M([\\d.]+) ([\\d.]+)`, 's')).slice(1).map(Number),
  );
  assert.ok(muzzle[0] < tail[0] - 100 && muzzle[1] < tail[1], `${muzzle}, ${tail}`);
  await session.open('animal');
  const [behind, front] = [await session.onScreen([0, 0, -0.8]), await session.onScreen([0, 0.6, 1.6])];
  assert.ok(front[0] < behind[0] - 100, `${front}, ${behind}`);
  assert.deepEqual(await session.page.evaluate(() => qelmPage.surface.camera.up.toArray()), [0, 1, 0]);
  await session.closed();
  session.qelm('view', 'animal.obj', ...fixes, '--up', 'z', '-o', 'lying.html', '-q');
  await session.open('lying');
  assert.deepEqual(await session.page.evaluate(() => qelmPage.surface.camera.up.toArray()), [0, 0, 1]);
  await session.closed();
});

test('holes of a roof can be seen through', async () => {
  await session.open('roof');
  const [x, y] = await session.onScreen([-3, 0, 3]);
  assert.equal(await session.page.evaluate((px, py) => qelmPage.surface.pick(px, py), x, y), null);
  assert.ok(await session.page.evaluate((px, py) => qelmPage.surface.pick(px, py), x + 180, y + 60));
  await session.closed();
});

test('a tap reads the value, a finger that stays goes on reading, two fingers zoom and move', async () => {
  await session.open('roof', kPhone);
  const { page } = session;
  const at = await session.onScreen([2, -4, 2.5]);
  await page.touchscreen.tap(...at);
  await session.settled();
  const read = await session.text('#answer');
  assert.match(read, /^Value 0\.\d+/);
  await nothingOverlaps('with an answer', false);
  const camera = () => page.evaluate(() => qelmPage.surface.camera.position.toArray().join());
  const before = await camera();
  const held = await page.touchscreen.touchStart(...at);
  await page.waitForFunction(() => !document.getElementById('reading').hidden);
  const first = await session.text('#reading');
  await held.move(at[0] - 60, at[1] - 20);
  await page.waitForFunction((text) => document.getElementById('reading').innerText !== text, {}, first);
  assert.equal(await camera(), before, 'reading does not turn the mesh');
  await held.end();
  const one = await page.touchscreen.touchStart(150, 420);
  await one.move(220, 440);
  await one.end();
  assert.notEqual(await camera(), before, 'a drag turns');
  const distance = () => page.evaluate(() => qelmPage.surface.camera.position.distanceTo(qelmPage.navigation.controls.target));
  const far = await distance();
  await session.fingers([[170, 420], [220, 420]], [[90, 420], [300, 420]]);
  const near = await distance();
  assert.ok(near < 0.8 * far, 'a pinch zooms');
  const point = [2, -4, 2.5];
  const was = await session.onScreen(point);
  await session.fingers([[150, 420], [220, 420]], [[210, 450], [280, 450]]);
  const is = await session.onScreen(point);
  assert.ok(Math.abs((await distance()) / near - 1) < 0.02, 'two fingers side by side do not zoom');
  assert.ok(Math.abs(is[0] - was[0] - 60) < 15 && Math.abs(is[1] - was[1] - 30) < 15, `they move the mesh: ${was} to ${is}`);
  assert.equal(await page.evaluate(() => visualViewport.scale), 1, 'and not the page');
  await session.closed();
});

test('on phones an answer takes the place of a panel, and does not lie on what was asked for', async () => {
  await session.open('roof', { width: 568, height: 320, touch: true });
  const { page } = session;
  await page.tap('#tabs [data-tab=view]');
  assert.ok(await page.$eval('#view', (panel) => panel.offsetHeight > 100));
  for (const point of [[-8, 0, 1.7], [8, -2, 1.6]]) {
    const at = await session.onScreen(point);
    await page.touchscreen.tap(...at);
    await session.settled();
    assert.equal(await page.$eval('#view', (panel) => panel.offsetHeight), 0);
    const marked = await session.onScreen(point);
    const card = await page.$eval('#answer', (answer) => answer.getBoundingClientRect().toJSON());
    assert.ok(card.width > 190 && (marked[0] < card.left || marked[0] > card.right), `${marked} lies under ${JSON.stringify(card)}`);
    await nothingOverlaps('with an answer', false);
    await page.keyboard.press('Escape');
  }
  await session.closed();
});

test('the name of the mesh comes before its counts where there is little room', async () => {
  await session.open('roof', { width: 320, height: 568, touch: true });
  const cut = (text) =>
    session.page.evaluate((name) => {
      document.querySelector('h1').textContent = name;
      return ['h1', '#counts'].map((one) => document.querySelector(one)).map((one) => one.scrollWidth > one.clientWidth);
    }, text);
  assert.deepEqual(await cut('a.obj'), [false, false]);
  assert.deepEqual(await cut('front_panel_left.stl'), [false, true]);
  await session.closed();
});

test('dense curves are thinned out, and all come back near by', async () => {
  await session.open('dense', { width: 390, height: 844, touch: true });
  const { page } = session;
  // Along a line across the curves: how often dark follows light.
  const darkParts = async () => {
    const seen = await session.picture();
    const [from, to] = [await session.onScreen([-0.9, 0.31, 0]), await session.onScreen([-0.1, 0.31, 0])];
    const [y, left, right] = [2 * from[1], Math.max(0, 2 * from[0]), Math.min(seen.width - 1, 2 * to[0])];
    const light = [];
    for (let x = left; x < right; ++x) light.push(seen.at(x, y)[1] > 34);
    return { lines: light.filter((isLight, k) => k > 0 && !isLight && light[k - 1]).length, dark: light.filter((l) => !l).length / light.length };
  };
  const far = await darkParts();
  assert.ok(far.lines >= 36 && far.lines <= 44, `half of 80: ${far.lines}`);
  assert.ok(far.dark < 0.55, `${far.dark} is dark`);
  await page.evaluate(() => {
    const { navigation, surface } = qelmPage;
    surface.camera.position.lerp(navigation.controls.target, 0.6);
    surface.draw();
  });
  const near = await darkParts();
  assert.ok(near.dark < 0.55, `${near.dark}`);
  const [a, b] = [await session.onScreen([-0.1, 0.31, 0]), await session.onScreen([0.1, 0.31, 0])];
  assert.ok(b[0] - a[0] > 60);
  const seen = await session.picture();
  let lines = 0;
  for (let x = 2 * a[0] + 1; x < 2 * b[0]; ++x) lines += seen.at(x, 2 * a[1])[1] < seen.at(x - 1, 2 * a[1])[1] - 40 ? 1 : 0;
  assert.ok(lines >= 17, `${lines} of twenty`);
  await session.closed();
});

test('only keys bring a frame round what has the focus', async () => {
  await session.open('roof');
  const { page } = session;
  const frame = () => page.$eval('#canvas', (canvas) => getComputedStyle(canvas).boxShadow);
  await page.mouse.move(700, 450);
  await page.mouse.down();
  await page.mouse.move(760, 470, { steps: 3 });
  await page.mouse.up();
  assert.equal(await frame(), 'none');
  await page.keyboard.press('ArrowLeft');
  assert.notEqual(await frame(), 'none');
  await page.mouse.click(700, 450);
  assert.equal(await frame(), 'none');
  await session.closed();
});

test('labels never leave the scale, whatever the numbers', async () => {
  for (const [name, texts] of Object.entries({
    tiny: ['0', '1e−12'],
    long: ['−123456.789', '0.25'],
    narrow: ['6512000.25', '6512000.75'],
  })) {
    await session.open(name, kScreens[0]);
    const { page } = session;
    const seen = () =>
      page.evaluate(() => {
        const card = document.getElementById('scale-card').getBoundingClientRect();
        const boxes = [...document.querySelectorAll('#legend text')].map((text) => [text.textContent, text.getBoundingClientRect()]);
        const outside = boxes.filter(([, b]) => b.left < card.left || b.right > card.right || b.top < card.top || b.bottom > card.bottom);
        const overlap = boxes.filter(([, a], k) => boxes.slice(0, k).some(([, b]) => a.left < b.right && a.right > b.left && a.top < b.bottom - 2 && a.bottom > b.top + 2));
        return { texts: boxes.map(([text]) => text), bad: [...outside, ...overlap].map(([text]) => text), isInside: card.right <= innerWidth };
      });
    for (const [width, height] of [[1400, 900], [390, 844], [844, 390]]) {
      await page.setViewport({ width, height });
      await session.settled();
      const { texts: shown, bad, isInside } = await seen();
      assert.deepEqual(bad, [], `${name} at ${width}`);
      assert.ok(isInside);
      for (const text of texts) assert.ok(shown.some((label) => label.split(' ')[0] === text), `${text}: ${shown}`);
    }
    await page.evaluate(() => qelmPage.setField(qelmPage.data.field.map(() => -123456.789), []));
    const { texts: equal, bad } = await seen();
    assert.deepEqual(bad, [], 'equal ends');
    assert.equal(equal.filter((text) => text.startsWith('−123456.789')).length, 1, `${equal}`);
    await session.closed();
  }
});

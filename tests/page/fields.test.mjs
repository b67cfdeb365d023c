// Several fields on one page, and colours over a range that was given.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { Session } from './session.mjs';
import { sheet } from './shapes.mjs';

const session = new Session();

before(async () => {
  await session.start();
  const mesh = sheet(40, 20, [-2, 2, -1, 1]);
  const sides = ['--fix', 'xmin=0,5', '--fix', 'xmax=1,9'];
  session.make('two', mesh, ...sides, '--levels', '4', '--unit', 'K');
  session.make('ranged', mesh, '--fix', 'xmin=0', '--fix', 'xmax=1', '--range', '0.25,3', '--ramp', 'coolwarm');
});

after(() => session.end());

const state = () =>
  session.page.evaluate(() => ({
    levels: qelmPage.levels,
    range: qelmPage.surface.range,
    conditions: [...document.querySelectorAll('#conditions code')].map((code) => code.textContent.replaceAll(/\s/g, ' ')),
    hash: window.location.hash,
  }));

test('the choice of a field changes picture, levels, conditions and address', async () => {
  const page = await session.open('two');
  assert.deepEqual(await page.$$eval('#field option', (options) => options.map((option) => option.textContent)), ['1', '2']);
  assert.deepEqual((await state()).conditions, ['xmin = 0 K', 'xmax = 1 K']);
  await page.select('#field', '1');
  await page.waitForFunction(() => window.location.hash.includes('field=1'));
  const { levels, range, conditions } = await state();
  assert.ok(Math.abs(range.low - 5) < 1e-9 && Math.abs(range.high - 9) < 1e-9);
  levels.forEach((level, k) => assert.ok(Math.abs(level - (5.8 + 0.8 * k)) < 1e-9));
  assert.deepEqual(conditions, ['xmin = 5 K', 'xmax = 9 K']);
  await page.select('#field', '0');
  await page.waitForFunction(() => !window.location.hash.includes('field'));
  assert.deepEqual((await state()).conditions, ['xmin = 0 K', 'xmax = 1 K']);
  await session.closed();
});

test('an address leads to its field', async () => {
  const page = await session.open('two');
  await page.evaluate(() => (window.location.hash = '#field=1&n=2'));
  await page.waitForFunction(() => qelmPage.levels.length === 2);
  const { levels, range } = await state();
  assert.ok(range.low > 4 && levels[0] > 6 && levels[0] < 7);
  assert.equal(await page.$eval('#field', (select) => select.value), '1');
  await session.closed();
});

test('one field offers no choice', async () => {
  const page = await session.open('ranged');
  assert.equal(await page.$eval('#field-choice', (label) => getComputedStyle(label).display), 'none');
  await session.closed();
});

test('colours span the range that was given, and the scale says what is beyond', async () => {
  const page = await session.open('ranged');
  const colour = (value) => page.evaluate((v) => qelmPage.surface.colourOf(v).getStyle(), value);
  const first = await page.evaluate(() => [...qelmPage.data.colours.subarray(0, 3)]);
  assert.deepEqual(first, [59, 76, 192]);
  assert.equal(await colour(0), await colour(0.25));
  assert.notEqual(await colour(0.25), await colour(0.9));
  assert.equal(await colour(3), await colour(9));
  assert.match(await page.$eval('#legend', (svg) => svg.getAttribute('aria-label')), /from \u2264 0\.25 to 3$/);
  const places = await page.evaluate(() => [...qelmPage.surface.surface.geometry.attributes.uv.array]);
  assert.ok(Math.min(...places) < 0 && Math.max(...places) < 0.3);
  await session.closed();
});

// Pages for everybody: screen readers, keys, contrast, wishes for dark, still and printed pages.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { after, before, test } from 'node:test';
import { contrast, textsCanBeRead } from './contrast.mjs';
import { Session } from './session.mjs';
import { roof } from './shapes.mjs';

// The packages lie with the page's sources.
const kAxe = readFileSync(createRequire(new URL('../../tools/page/package.json', import.meta.url)).resolve('axe-core/axe.min.js'), 'utf8');
const session = new Session();

before(async () => {
  session.make('roof', roof(), '--fix', 'loop:0=0', '--fix', 'loop:1=1', '--fix', 'loop:2=0.5', '--levels', '19', '--unit', 'kN');
  await session.start();
});
after(() => session.end());

async function noViolation(where) {
  const found = await session.page.evaluate(async () => {
    const { violations } = await axe.run();
    return violations.map(({ id, nodes }) => `${id}: ${nodes.map(({ html, failureSummary }) => `${html.slice(0, 90)} ${failureSummary.slice(0, 160)}`).join(' | ')}`);
  });
  assert.deepEqual(found, [], where);
}

const kPlaces = {
  'a desk': { width: 1400, height: 900 },
  'a dark desk': { width: 1400, height: 900, theme: 'dark' },
  'a phone': { width: 390, height: 844, touch: true },
};
for (const [name, options] of Object.entries(kPlaces))
  test(`axe finds no violation on ${name}`, async () => {
    await session.open('roof', options);
    await session.page.evaluate(kAxe);
    await noViolation('as it opens');
    await session.page.evaluate(() => {
      document.querySelectorAll('details').forEach((details) => (details.open = true));
      document.getElementById('keys').click();
      const { left, right, top, bottom } = qelmPage.surface.rectangle;
      qelmPage.answer.tapped(qelmPage.surface.pick((left + right) / 2, (top + bottom) / 2), false);
    });
    await noViolation('with all lists open');
    for (const tab of options.touch ? await session.page.$$('#tabs button') : []) {
      await tab.tap();
      await noViolation('with a panel open');
    }
    await session.closed();
  });

// Axe passes over text whose background it cannot tell, which is most of the page's.
for (const [name, options] of Object.entries(kPlaces))
  test(`every text has a contrast of 4.5 on ${name}`, async () => {
    assert.equal(contrast([0, 0, 0], [255, 255, 255]), 21);
    assert.ok(Math.abs(contrast([118, 118, 118], [255, 255, 255]) - 4.54) < 0.01);
    await session.open('roof', options);
    const { page } = session;
    assert.ok((await textsCanBeRead(session, 'as it opens')) > 7);
    await page.evaluate(() => {
      document.querySelectorAll('details').forEach((details) => (details.open = true));
      document.getElementById('keys').click();
      const { left, right, top, bottom } = qelmPage.surface.rectangle;
      qelmPage.answer.tapped(qelmPage.surface.pick((left + right) / 2, (top + bottom) / 2), false);
    });
    assert.ok((await textsCanBeRead(session, 'with all lists open')) > 12);
    for (const tab of options.touch ? await page.$$('#tabs button') : []) {
      await tab.tap();
      await textsCanBeRead(session, 'with a panel open');
    }
    await session.closed();
  });

test('keys do all that a pointer does', async () => {
  await session.open('roof');
  const { page } = session;
  await page.focus('#canvas');
  const said = () => page.$eval('#announcement', (element) => element.textContent);
  await page.keyboard.press('Enter');
  assert.match(await said(), /^Value 0\.\d+.kN/);
  assert.match(await session.text('#answer'), /^Value/);
  await page.keyboard.press('a');
  assert.equal(await page.evaluate(() => qelmPage.levels.length), 20);
  assert.match(await said(), /^Level 0\.\d+.kN added$/);
  await page.keyboard.press('Escape');
  await page.keyboard.press('m');
  await page.keyboard.press('Enter');
  await page.keyboard.press('ArrowLeft');
  await page.keyboard.press('Enter');
  assert.match(await said(), /^Distance /);
  await page.keyboard.press('Escape');
  await page.keyboard.press('n');
  assert.equal(await page.evaluate(() => qelmPage.surface.shown.values), true);
  await page.keyboard.press('p');
  assert.equal(await page.$eval('#view', (panel) => panel.offsetHeight), 0, 'panels are away');
  assert.equal(await page.$eval('#fold', (button) => button.ariaExpanded), 'false');
  await page.keyboard.press('p');
  assert.ok((await page.$eval('#view', (panel) => panel.offsetHeight)) > 0);
  assert.match(await page.$eval('#legend', (legend) => legend.ariaLabel), /^Scale of values from 0 kN to 1 kN$/);
  await session.closed();
});

test('whoever wants no motion gets none', async () => {
  await session.open('roof');
  const moving = () => session.page.$eval('#reset', (button) => getComputedStyle(button).transitionDuration);
  await session.page.emulateMediaFeatures([{ name: 'prefers-reduced-motion', value: 'reduce' }]);
  assert.equal(await moving(), '0s');
  await session.page.emulateMediaFeatures([{ name: 'prefers-reduced-motion', value: 'no-preference' }]);
  assert.notEqual(await moving(), '0s');
  await session.closed();
});

test('on paper there is the picture with its scale, on white', async () => {
  await session.open('roof', { theme: 'dark' });
  const { page } = session;
  await page.evaluate(() => window.dispatchEvent(new Event('beforeprint')));
  await page.emulateMediaType('print');
  const seen = await page.evaluate(() => {
    const print = document.getElementById('print');
    const { data, width, height } = print.getContext('2d').getImageData(0, 0, print.width, print.height);
    let filled = 0;
    for (let k = 3; k < data.length; k += 4) filled += data[k] > 200 ? 1 : 0;
    const visible = (id) => document.getElementById(id).getBoundingClientRect().width > 0;
    return {
      filled: filled / (width * height),
      scale: visible('scale-card'),
      controls: visible('curves') || visible('view'),
      name: document.querySelector('h1').getBoundingClientRect().width > 0,
      theme: document.documentElement.dataset.theme,
    };
  });
  assert.ok(seen.filled > 0.3, `the mesh takes ${seen.filled} of the picture`);
  assert.deepEqual([seen.scale, seen.controls, seen.name, seen.theme], [true, false, true, 'light']);
  await page.emulateMediaType('screen');
  await page.evaluate(() => window.dispatchEvent(new Event('afterprint')));
  assert.equal(await page.evaluate(() => qelmPage.theme), 'auto', 'as before');
  await session.closed();
});

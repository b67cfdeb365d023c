// usage: node screenshot.mjs PAGE.html PICTURE.png [--theme light|dark] [--size WxH]
//   [--whole] [--touch] [--pointer X,Y] [--click X,Y] [--run SCRIPT]
// A picture of a page of `qelm view`, as its "Save picture" makes it with the panels folded away, or,
// with --whole, with all that is on the page, after a click and with the pointer at X, Y. --touch:
// as on a phone. SCRIPT runs on the page before.
import { writeFile } from 'node:fs/promises';
import path from 'node:path';
import { parseArgs } from 'node:util';
import { openPage, startBrowser } from './browser.mjs';

const { values, positionals } = parseArgs({
  allowPositionals: true,
  options: {
    theme: { type: 'string', default: 'light' },
    size: { type: 'string', default: '1080x720' },
    whole: { type: 'boolean', default: false },
    touch: { type: 'boolean', default: false },
    pointer: { type: 'string' },
    click: { type: 'string' },
    run: { type: 'string', default: '' },
  },
});
const [file, target] = positionals;
const [width, height] = values.size.split('x').map(Number);
const { browser, close } = await startBrowser();
try {
  const { theme, touch } = values;
  const page = await openPage(browser, path.resolve(file), { width, height, theme, touch });
  if (!values.whole) await page.evaluate(() => qelmPage.panels.fold());
  if (values.run) await page.evaluate(values.run);
  const at = (place) => place.split(',').map(Number);
  if (values.click) await (touch ? page.touchscreen.tap(...at(values.click)) : page.mouse.click(...at(values.click)));
  if (values.pointer) await page.mouse.move(...at(values.pointer));
  // Two frames later all that was asked for is drawn.
  await page.evaluate(
    () => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))),
  );
  const url = values.whole
    ? null
    : await page.evaluate(async () => (await qelmPage.picture()).toDataURL('image/png'));
  await writeFile(target, url ? Buffer.from(url.split(',')[1], 'base64') : await page.screenshot());
  if (page.complaints.length > 0) throw new Error(page.complaints.join('\n'));
} finally {
  await close();
}

// usage: node measure.mjs PAGE.html [--size WxH] [--turns N]
// What a page of `qelm view` costs in this machine's browser: its bytes, milliseconds until the first
// picture, and frames a second while someone turns the mesh. Without a graphics card that is
// the software renderer's speed, which it says.
import { stat } from 'node:fs/promises';
import path from 'node:path';
import { parseArgs } from 'node:util';
import { openPage, startBrowser } from './browser.mjs';

const { values, positionals } = parseArgs({
  allowPositionals: true,
  options: { size: { type: 'string', default: '1400x900' }, turns: { type: 'string', default: '40' } },
});
const [width, height] = values.size.split('x').map(Number);
const file = path.resolve(positionals[0]);
const { browser, close } = await startBrowser();
try {
  const began = performance.now();
  const page = await openPage(browser, file, { width, height, patience: 300000 });
  const opened = performance.now() - began;
  const found = await page.evaluate(async (turns) => {
    const { surface, navigation } = qelmPage;
    const gl = surface.renderer.getContext();
    const times = [];
    const pixel = new Uint8Array(4);
    const frame = () => new Promise((done) => requestAnimationFrame(done));
    await frame();
    for (let k = 0; k < turns; ++k) {
      const start = performance.now();
      navigation.key({ key: 'ArrowLeft' });
      await frame(); // browsers wait with it until they have room for another picture
      times.push(performance.now() - start);
    }
    surface.motion.rest();
    const still = performance.now();
    surface.drawNow();
    gl.readPixels(0, 0, 1, 1, gl.RGBA, gl.UNSIGNED_BYTE, pixel);
    const name = gl.getExtension('WEBGL_debug_renderer_info');
    return { times, still: performance.now() - still, renderer: name && gl.getParameter(name.UNMASKED_RENDERER_WEBGL), triangles: qelmPage.facts.triangles };
  }, Number(values.turns));
  const median = found.times.sort((a, b) => a - b)[found.times.length >> 1];
  console.log(`page       ${((await stat(file)).size / 1e6).toFixed(1)} MB, ${found.triangles} triangles`);
  console.log(`renderer   ${found.renderer}`);
  console.log(`opens in   ${opened.toFixed(0)} ms`);
  console.log(`turning    ${median.toFixed(0)} ms a frame (median of ${found.times.length}), ${(1000 / median).toFixed(1)} frames a second`);
  console.log(`at rest    ${found.still.toFixed(0)} ms a frame`);
} finally {
  await close();
}

// What tests of pages share: a folder, a browser, the tool, and ways to look at a page.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { openPage, startBrowser } from '../../tools/page/browser.mjs';
import { Picture } from './picture.mjs';
import { obj } from './shapes.mjs';

export class Session {
  constructor() {
    this.folder = mkdtempSync(path.join(tmpdir(), 'qelm-page-'));
  }

  async start() {
    this.chromium = await startBrowser();
  }

  async end() {
    await this.chromium.close();
    rmSync(this.folder, { recursive: true });
  }

  file = (name) => path.join(this.folder, name);

  qelm(...words) {
    return execFileSync(process.env.QELM_TOOL, words, { cwd: this.folder, stdio: ['ignore', 'pipe', 'pipe'] });
  }

  /** NAME.html of a mesh, by `qelm view`. */
  make(name, mesh, ...options) {
    writeFileSync(this.file(`${name}.obj`), obj(mesh));
    this.qelm('view', `${name}.obj`, ...options, '-o', `${name}.html`, '-q');
  }

  async open(name, options) {
    this.page = await openPage(this.chromium.browser, this.file(`${name}.html`), options);
    return this.page;
  }

  /** What holds after every test. */
  async closed() {
    assert.deepEqual(this.page.complaints, []);
    await this.page.close();
  }

  /** Once what was asked for is drawn. */
  settled() {
    return this.page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
  }

  async picture() {
    await this.settled();
    return Picture.fromPng(Buffer.from(await this.page.screenshot()));
  }

  /** Where a point of the mesh is on the screen. */
  onScreen(point) {
    return this.page.evaluate((p) => {
      const { surface } = qelmPage;
      const local = p.map((c, k) => (c - surface.place.centre[k]) / surface.place.radius);
      const at = surface.camera.position.clone().set(...local).project(surface.camera);
      return [((at.x + 1) / 2) * surface.width, ((1 - at.y) / 2) * surface.height];
    }, point);
  }

  /** Fingers that come down together, move straight on in four steps and let go. */
  async fingers(from, to) {
    const client = await this.page.createCDPSession();
    const send = (type, points) =>
      client.send('Input.dispatchTouchEvent', { type, touchPoints: points.map(([x, y], id) => ({ x, y, id })) });
    await send('touchStart', from);
    for (const part of [0.25, 0.5, 0.75, 1])
      await send('touchMove', from.map((a, k) => a.map((c, axis) => c + part * (to[k][axis] - c))));
    await send('touchEnd', []);
    await client.detach();
    await this.settled();
  }

  text(selector) {
    return this.page.$eval(selector, (element) => (element.hidden ? '' : element.innerText));
  }

  /** The file that a click on the button of this id offers: {name, text}. */
  offered(id) {
    return this.page.evaluate(async (wanted) => {
      const { click } = HTMLAnchorElement.prototype;
      const { createObjectURL } = URL;
      let blob;
      URL.createObjectURL = (made) => createObjectURL.call(URL, (blob = made));
      const name = await new Promise((done) => {
        HTMLAnchorElement.prototype.click = function () {
          done(this.download);
        };
        document.getElementById(wanted).click();
      });
      HTMLAnchorElement.prototype.click = click;
      URL.createObjectURL = createObjectURL;
      return { name, text: await blob.text() };
    }, id);
  }
}

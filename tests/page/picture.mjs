// Screenshots as pixels.
import { createRequire } from 'node:module';

// The packages lie with the page's sources.
const { PNG } = createRequire(new URL('../../tools/page/package.json', import.meta.url))('pngjs');

export class Picture {
  static fromPng(bytes) {
    return new Picture(PNG.sync.read(bytes));
  }

  constructor({ width, height, data }) {
    Object.assign(this, { width, height, data });
  }

  /** [red, green, blue] of the pixel at a position. */
  at(x, y) {
    const k = 4 * (Math.floor(y) * this.width + Math.floor(x));
    return [...this.data.subarray(k, k + 3)];
  }

  /** Which part of the pixels differs visibly. */
  difference(other) {
    let count = 0;
    for (let k = 0; k < this.data.length; k += 4) {
      const off = Math.max(...[0, 1, 2].map((c) => Math.abs(this.data[k + c] - other.data[k + c])));
      count += off > 24 ? 1 : 0;
    }
    return (4 * count) / this.data.length;
  }
}

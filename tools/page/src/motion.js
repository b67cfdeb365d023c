// Drawing less while something moves, so that it moves smoothly.

const kRest = 220; // milliseconds without a move until all is drawn again
const kSlow = 46; // milliseconds for a frame, above which the picture gets coarser
const kVerySlow = 120; // milliseconds for one frame, which are enough to know
const kFrames = 4; // that are looked at together
const kLeast = 0.5; // of the dots, in each direction

/** Tells when moves begin and end, and how fine their pictures can be on this machine. */
export class Motion {
  /** `changed()` when isOn, coarseness or sharpness have changed; coarseness: 0 to `coarsest`. */
  constructor(coarsest, changed) {
    Object.assign(this, { coarsest, changed, isOn: false, coarseness: 0, sharpness: 1, times: [] });
  }

  /** Something has moved. */
  stir() {
    this.#await();
    if (this.isOn) return;
    this.isOn = true;
    this.times = [];
    this.changed();
  }

  rest() {
    clearTimeout(this.timer);
    cancelAnimationFrame(this.check);
    if (!this.isOn) return;
    this.isOn = false;
    this.changed();
  }

  #await() {
    clearTimeout(this.timer);
    cancelAnimationFrame(this.check);
    // A busy graphics card lets the next frame wait, and what moves may only be waiting, too.
    this.timer = setTimeout(() => {
      this.check = requestAnimationFrame(() => (this.check = requestAnimationFrame(() => this.rest())));
    }, kRest);
  }

  /** A frame is drawn. */
  frame() {
    if (!this.isOn) return;
    this.#await(); // however long it took
    this.times.push(performance.now());
    const { length } = this.times;
    const last = this.times[length - 1] - this.times[length - 2];
    if (length <= kFrames && !(last > kVerySlow)) return;
    const each = (this.times[length - 1] - this.times[0]) / (length - 1);
    this.times = [this.times[length - 1]];
    const isCoarsest = this.coarseness === this.coarsest;
    if (each < kSlow || (isCoarsest && this.sharpness <= kLeast)) return;
    // First less of a large mesh, then fewer dots.
    if (isCoarsest) this.sharpness = Math.max(kLeast, this.sharpness * 0.75);
    else ++this.coarseness;
    this.changed();
  }
}

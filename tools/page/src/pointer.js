// Pointing at the mesh: a mouse that hovers, a click, a tap, a finger that stays.

const kStill = 6; // pixels that a click may move
const kHold = 380; // milliseconds until a finger that stays reads instead of turning

const placeOf = (event) => ({ x: event.offsetX, y: event.offsetY, isTouch: event.pointerType === 'touch' });

class Pointing {
  #callbacks;
  #pressed = new Map(); // pointers that are down: where and since when, and whether they can still become a tap
  #awaited = null; // the place to hover over in the next frame
  #timer = 0;
  #reads = false; // a finger has stayed

  constructor(callbacks) {
    this.#callbacks = callbacks;
  }

  down(event) {
    const press = { ...placeOf(event), isStill: event.button === 0, since: event.timeStamp };
    this.#pressed.set(event.pointerId, press);
    this.leave();
    this.#endHold();
    if (this.#pressed.size > 1) {
      for (const other of this.#pressed.values()) other.isStill = false;
    } else if (press.isTouch) {
      this.#timer = setTimeout(() => press.isStill && this.#startHold(event), kHold);
    }
  }

  move(event) {
    const press = this.#pressed.get(event.pointerId);
    if (press && Math.hypot(event.offsetX - press.x, event.offsetY - press.y) > kStill) press.isStill = false;
    if (this.#reads || !press) this.#hoverSoon(event);
  }

  up(event) {
    const press = this.#pressed.get(event.pointerId);
    this.#pressed.delete(event.pointerId);
    // On a busy machine a tap may come after the timer of a hold: the events know how long it was.
    const isHold = this.#reads && event.timeStamp - press?.since >= kHold;
    this.#endHold();
    if (!press?.isStill || isHold || event.type !== 'pointerup') return;
    this.#awaited = null;
    const { x, y, isTouch } = placeOf(event);
    this.#callbacks.tap(x, y, isTouch);
  }

  leave() {
    this.#awaited = null;
    this.#callbacks.away();
  }

  #startHold(event) {
    this.#reads = true;
    this.#callbacks.suspend(true);
    this.#hoverSoon(event);
  }

  #endHold() {
    clearTimeout(this.#timer);
    if (this.#reads) this.#callbacks.suspend(false);
    this.#reads = false;
  }

  #hoverSoon(event) {
    if (!this.#awaited) requestAnimationFrame(() => this.#hover());
    this.#awaited = placeOf(event);
  }

  #hover() {
    if (!this.#awaited) return;
    const { x, y, isTouch } = this.#awaited;
    this.#callbacks.hover(x, y, isTouch);
    this.#awaited = null;
  }
}

/**
 * Calls back with places on the canvas in CSS pixels:
 *   hover(x, y, isTouch)  the pointer is there without a button, or a finger has stayed and moves
 *   away()                it is not any more
 *   tap(x, y, isTouch)    it was pressed and let go there
 * `suspend(bool)` says when the finger does not turn the mesh.
 */
export function followPointer(canvas, { hover, away, tap, suspend }) {
  const pointing = new Pointing({ hover, away, tap, suspend });
  canvas.addEventListener('pointerdown', (event) => pointing.down(event));
  canvas.addEventListener('pointermove', (event) => pointing.move(event));
  canvas.addEventListener('pointerup', (event) => pointing.up(event));
  canvas.addEventListener('pointercancel', (event) => pointing.up(event));
  canvas.addEventListener('pointerleave', (event) => event.pointerType === 'touch' || pointing.leave());
  canvas.addEventListener('wheel', () => pointing.leave(), { passive: true });
  canvas.addEventListener('contextmenu', (event) => event.preventDefault());
}
